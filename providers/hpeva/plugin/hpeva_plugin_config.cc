#include "cfistringtool.h"
#include "cfitracelogfunction.h"
#include "hpeva_messages.h"
#include "hpeva_plugin.h"
#include "hpeva_process.h"

using namespace qorin_pdk_4_4;

namespace {

const char kSourceFile[] = "providers/hpeva/plugin/hpeva_plugin_config";

}  // namespace

int CHpEvaPlugin::config(qrn_domain *node, int op, char *sessionId, qrn_confspec *spec)
{
    CFiTraceLogFunction traceFunction(processTraceLog(), "CHpEvaPlugin::config");
    // Overridden only so that nothing the parameter services throw crosses the entry, and so
    // that a refused document tells the host why: the kit's operation answers with a result
    // and a trace line alone.
    return guard("config", __LINE__).run([&] {
        const bool setting = spec != nullptr && spec->text != nullptr &&
                             (op == QRN_CONFIG_SET || op == QRN_CONFIG_SET_ALTERNATE) &&
                             (spec->selector1 != 0 || spec->selector2 != 0);
        const int result = CFiPluginBase::config(node, op, sessionId, spec);
        if (!setting || result != QRN_ERR_INVALID_ARGUMENT) {
            return result;
        }
        CFiPrivateDataFactoryPtr factory = privateDataFactory();
        CFiPrivateDataPtr data = factory.isNull() ? CFiPrivateDataPtr() : factory->find(node);
        const int mode = spec->selector1 != 0 ? 1 : 0;
        if (data.isNull() || !data->hasConfigDataList(mode)) {
            return result;
        }
        const SFiXmlParseError &error = data->configDataList(mode).getParseError();
        if (error.failed()) {
            const wchar_t *name = data->getObjName();
            pushMessage(m_errorManager, hpeva_msg::MSG_ERROR_CONFIG_DOCUMENT_INVALID, QRN_SEVERITY_ERROR, kSourceFile,
                        __LINE__,
                        icu::Formattable(CFiStringTool::tstr2ustr(std::wstring(name != nullptr ? name : L""))),
                        icu::Formattable(CFiStringTool::str2ustr(error.message)),
                        icu::Formattable(static_cast<int32_t>(error.line)),
                        icu::Formattable(static_cast<int32_t>(error.column)));
        }
        return result;
    });
}
