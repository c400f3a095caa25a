#ifndef HPEVA_GUARD_H
#define HPEVA_GUARD_H

#include <type_traits>

#include "cfierrormanager.h"
#include "cfitracelog.h"
#include "qrn_records.h"
#include "qrn_results.h"

// The catch ladder that ends every CHpEvaPlugin operation. An exception of a type on the
// ladder becomes a catalog message in the calling thread's error slot and a result:
// QRN_ERR_FAILED, or QRN_ERR_INIT_FAILED for an initialisation, which also pushes
// "MSG_ERROR_INITIALIZATION_FAILED". Any other exception passes through. Use:
//
//     return CHpEvaGuard(m_errorManager, m_traceLog, "select", "providers/hpeva/hpeva_plugin", __LINE__)
//         .run([&] { ...; return QRN_OK; });
class CHpEvaGuard {
public:
    // operation is the plain name used in the trace line, as in "select"; file and line are
    // the catch site that the messages name.
    CHpEvaGuard(const qorin_pdk_4_4::CFiErrorManagerPtr &errors, const qorin_pdk_4_4::CFiTraceLogPtr &log,
                const char *operation, const char *file, int line, bool initialisation = false);

    // body's result, or the ladder's. A body without a result counts as QRN_OK.
    template <class Body>
    int run(Body &&body) const
    {
        try {
            if constexpr (std::is_void_v<std::invoke_result_t<Body &>>) {
                body();
                return QRN_OK;
            } else {
                return static_cast<int>(body());
            }
        } catch (...) {
            return ladder();
        }
    }

private:
    // Called only inside a handler: rethrows what is in flight and answers by the ladder.
    int ladder() const;
    int unhandled() const;

    qorin_pdk_4_4::CFiErrorManagerPtr m_errors;
    qorin_pdk_4_4::CFiTraceLogPtr m_log;
    const char *m_operation;
    const char *m_file;
    int m_line;
    bool m_initialisation;
};

#endif
