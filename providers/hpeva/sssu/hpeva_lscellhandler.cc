#include "hpeva_lscellhandler.h"

#include <charconv>
#include <string_view>

#include "cfistringtool.h"

// Literal views: comparing with one costs a length check and a memcmp.
using namespace std::string_view_literals;

using namespace qorin_pdk_4_4;

namespace {

const double BYTES_PER_GIGABYTE = 1073741824.0;

// SSSU prints space as decimal gigabytes ("1.50"). Read as atof would, but always with a
// decimal point: a host's locale must not turn 1.5 into 1.
uint64_t gigabytesToBytes(const std::string &text)
{
    const char *begin = text.c_str();
    const char *end = begin + text.size();
    while (begin != end && (*begin == ' ' || *begin == '\t' || *begin == '\n' || *begin == '\r')) {
        ++begin;
    }
    if (begin != end && *begin == '+') {
        ++begin;
    }
    double gigabytes = 0.0;
    if (std::from_chars(begin, end, gigabytes).ec != std::errc()) {
        return 0;
    }
    const double bytes = gigabytes * BYTES_PER_GIGABYTE;
    // Out of range would be undefined in the conversion; no real cell comes near it.
    if (!(bytes > 0.0)) {
        return 0;
    }
    if (bytes >= 18446744073709551616.0) {
        return UINT64_MAX;
    }
    return static_cast<uint64_t>(bytes);
}

}  // namespace

CHpEvaLsCellHandler::CHpEvaLsCellHandler() = default;

CHpEvaLsCellHandler::~CHpEvaLsCellHandler() = default;

void CHpEvaLsCellHandler::characters(const XMLCh *const chars, const XMLSize_t length)
{
    appendText(chars, length);
}

void CHpEvaLsCellHandler::startElement(const XMLCh *const, const XMLCh *const, const XMLCh *const,
                                       const xercesc::Attributes &)
{
    m_text.clear();
}

void CHpEvaLsCellHandler::endElement(const XMLCh *const, const XMLCh *const, const XMLCh *const qname)
{
    const std::u16string_view name = nameOf(qname);
    if (name == u"objectname"sv) {
        m_cell.cellname = CFiStringTool::str2wstr(m_text);
    } else if (name == u"firmwareversion"sv) {
        m_cell.firmwareversion = CFiStringTool::str2int(m_text);
    } else if (name == u"objectwwn"sv) {
        m_cell.objectwwn = m_text;
    } else if (name == u"totalstoragespace"sv) {
        m_cell.totalstoragespace = gigabytesToBytes(m_text);
    } else if (name == u"availablestoragespace"sv) {
        m_cell.availablestoragespace = gigabytesToBytes(m_text);
    }
    m_text.clear();
}

SHpEvaCell CHpEvaLsCellHandler::getCell()
{
    throwLastError();
    return m_cell;
}
