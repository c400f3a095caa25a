#include "hpeva_lsvdiskhandler.h"

#include <string_view>

#include "cfistringtool.h"

// Literal views: comparing with one costs a length check and a memcmp.
using namespace std::string_view_literals;

using namespace qorin_pdk_4_4;

namespace {

// The elements whose text is kept; all other text is skipped without transcoding.
bool isCollected(std::u16string_view name)
{
    static const std::u16string_view names[] = {u"objectname",
                                                u"wwlunid",
                                                u"familyname",
                                                u"parentvdiskname",
                                                u"childvdiskname",
                                                u"objecttype",
                                                u"objecthexuid",
                                                u"hostname",
                                                u"lunnumber",
                                                u"presentation",
                                                u"drmgroupname",
                                                u"drmnode",
                                                u"remotevirtualdiskname",
                                                u"sharingrelationship",
                                                u"requestedcapacityblocks",
                                                u"creationdatetime"};
    for (const std::u16string_view &candidate : names) {
        if (candidate == name) {
            return true;
        }
    }
    return false;
}

}  // namespace

CHpEvaLsVdiskHandler::CHpEvaLsVdiskHandler(const SHpEvaCell &cell) : m_lunNumber(0), m_cell(cell), m_collecting(false)
{
}

CHpEvaLsVdiskHandler::~CHpEvaLsVdiskHandler() = default;

void CHpEvaLsVdiskHandler::characters(const XMLCh *const chars, const XMLSize_t length)
{
    if (m_collecting) {
        appendText(chars, length);
    }
}

void CHpEvaLsVdiskHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname,
                                        const xercesc::Attributes &)
{
    const std::u16string_view name = nameOf(qname);
    m_text.clear();
    m_collecting = isCollected(name);
}

void CHpEvaLsVdiskHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    const std::u16string_view name = nameOf(qname);
    if (name == u"objectname"sv) {
        m_vdisk.objectname = m_text;
    } else if (name == u"wwlunid"sv) {
        m_vdisk.wwlunid = m_text;
    } else if (name == u"familyname"sv) {
        m_vdisk.familyname = m_text;
    } else if (name == u"parentvdiskname"sv) {
        m_vdisk.parentvdiskname = m_text;
    } else if (name == u"childvdiskname"sv) {
        m_vdisk.childvdiskname = m_text;
    } else if (name == u"objecttype"sv) {
        m_vdisk.objecttype = m_text;
    } else if (name == u"objecthexuid"sv) {
        m_vdisk.objecthexuid = m_text;
    } else if (name == u"drmgroupname"sv) {
        m_vdisk.drmgroupname = m_text;
    } else if (name == u"drmnode"sv) {
        m_vdisk.drmnode = m_text;
    } else if (name == u"remotevirtualdiskname"sv) {
        m_vdisk.remotevirtualdiskname = m_text;
    } else if (name == u"sharingrelationship"sv) {
        m_vdisk.sharingrelationship = m_text;
    } else if (name == u"creationdatetime"sv) {
        m_vdisk.creationdatetime = m_text;
    } else if (name == u"hostname"sv) {
        m_hostName = m_text;
    } else if (name == u"lunnumber"sv) {
        m_lunNumber = CFiStringTool::str2int(m_text);
    } else if (name == u"presentation"sv) {
        m_vdisk.presentations[m_hostName] = m_lunNumber;
    } else if (name == u"requestedcapacityblocks"sv) {
        uint64_t blocks = 0;
        CFiStringTool::str2uint64(m_text, blocks);
        m_vdisk.capacity = blocks << 9;
    } else if (name == u"object"sv) {
        if (m_vdisk.objecttype != "container") {
            static_cast<SHpEvaCell &>(m_vdisk) = m_cell;
            m_vdisks.push_back(std::move(m_vdisk));
        }
        // Nothing of this object reaches the next; the cell part is set again on append.
        m_vdisk = SHpEvaVdisk();
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
