#include "hpeva_lsvdiskhandler.h"

#include <string_view>

#include "cfistringtool.h"

using namespace qorin_pdk_4_4;

namespace {

// The elements whose text is kept; all other text is skipped without transcoding.
bool isCollected(const XMLCh *name)
{
    static const std::u16string_view names[] = {
        u"objectname",    u"wwlunid",   u"familyname",   u"parentvdiskname",       u"childvdiskname",
        u"objecttype",    u"objecthexuid", u"hostname",  u"lunnumber",             u"presentation",
        u"drmgroupname",  u"drmnode",   u"remotevirtualdiskname", u"sharingrelationship",
        u"requestedcapacityblocks"};
    const std::u16string_view name16(name);
    for (const std::u16string_view &candidate : names) {
        if (candidate == name16) {
            return true;
        }
    }
    return false;
}

}  // namespace

CHpEvaLsVdiskHandler::CHpEvaLsVdiskHandler(const SHpEvaCell &cell)
    : m_lunNumber(0), m_cell(cell), m_collecting(false)
{
}

CHpEvaLsVdiskHandler::~CHpEvaLsVdiskHandler() = default;

void CHpEvaLsVdiskHandler::characters(const XMLCh *const chars, const XMLSize_t length)
{
    // Replaces, as in the other handlers: of a value split by an entity the last piece stays.
    if (m_collecting) {
        m_text = toString(chars, length);
    }
}

void CHpEvaLsVdiskHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname,
                                        const xercesc::Attributes &)
{
    m_text.clear();
    m_collecting = qname != nullptr && isCollected(qname);
}

void CHpEvaLsVdiskHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    if (nameIs(qname, u"objectname")) {
        m_vdisk.objectname = m_text;
    } else if (nameIs(qname, u"wwlunid")) {
        m_vdisk.wwlunid = m_text;
    } else if (nameIs(qname, u"familyname")) {
        m_vdisk.familyname = m_text;
    } else if (nameIs(qname, u"parentvdiskname")) {
        m_vdisk.parentvdiskname = m_text;
    } else if (nameIs(qname, u"childvdiskname")) {
        m_vdisk.childvdiskname = m_text;
    } else if (nameIs(qname, u"objecttype")) {
        m_vdisk.objecttype = m_text;
    } else if (nameIs(qname, u"objecthexuid")) {
        m_vdisk.objecthexuid = m_text;
    } else if (nameIs(qname, u"drmgroupname")) {
        m_vdisk.drmgroupname = m_text;
    } else if (nameIs(qname, u"drmnode")) {
        m_vdisk.drmnode = m_text;
    } else if (nameIs(qname, u"remotevirtualdiskname")) {
        m_vdisk.remotevirtualdiskname = m_text;
    } else if (nameIs(qname, u"sharingrelationship")) {
        m_vdisk.sharingrelationship = m_text;
    } else if (nameIs(qname, u"hostname")) {
        m_hostName = m_text;
    } else if (nameIs(qname, u"lunnumber")) {
        m_lunNumber = CFiStringTool::str2int(m_text);
    } else if (nameIs(qname, u"presentation")) {
        m_vdisk.presentations[m_hostName] = m_lunNumber;
    } else if (nameIs(qname, u"requestedcapacityblocks")) {
        uint64_t blocks = 0;
        CFiStringTool::str2uint64(m_text, blocks);
        m_vdisk.capacity = blocks << 9;
    } else if (nameIs(qname, u"object")) {
        if (m_vdisk.objecttype != "container") {
            static_cast<SHpEvaCell &>(m_vdisk) = m_cell;
            m_vdisks.push_back(m_vdisk);
        }
        m_vdisk.clearDisk();
    }
    m_text.clear();
}

SHpEvaVdisk CHpEvaLsVdiskHandler::getVdisk()
{
    throwLastError();
    return m_vdisks.empty() ? SHpEvaVdisk() : m_vdisks.front();
}

std::list<SHpEvaVdisk> &CHpEvaLsVdiskHandler::getVdiskList()
{
    throwLastError();
    return m_vdisks;
}
