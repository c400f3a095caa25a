// Result codes and message severities, named once. The numbers are the host's and cross the
// entry table as they are; the names are this code's own. errmsg turns a result into the
// catalog key "MSG_ERROR_TAMLIN_<%04d>", so each one the host can see has a text there.
#ifndef QRN_RESULTS_H
#define QRN_RESULTS_H

#include "qrn_records.h"

#ifdef __cplusplus
extern "C" {
#endif

// What an entry, or the operation behind it, gives. Functions keep returning int.
enum qrn_result {
    QRN_OK = 0,
    // The delayed initialisation gave a non-zero result. (interpose answers QRN_INTERPOSED,
    // the same number, for yes.)
    QRN_ERR_DELAYED_INIT = 1,
    // A step could not be done and said why in a message or the trace: a LUN record that
    // could not be removed, a copy the array did not make.
    QRN_ERR_NOT_DONE = 1,
    QRN_ERR_INVALID_ARGUMENT = 3,
    // Not provided in this form; make, prepare and select go by session.
    QRN_ERR_NOT_PROVIDED = 4,
    // qorin_alloc_buf or qorin_get_objid failed, or a LUN number could not be had.
    QRN_ERR_NO_MEMORY = 5,
    // An exception ended the operation, or a plain internal failure; the reason is in the
    // calling thread's error slot or the trace log.
    QRN_ERR_FAILED = 6,
    // init got no version block.
    QRN_ERR_NO_VERSION_BLOCK = 7,
    // The node is not part of the session.
    QRN_ERR_NOT_IN_SESSION = 19,
    // No discovered cell has the WWN.
    QRN_ERR_NO_SUCH_CELL = 20,
    QRN_ERR_BAD_UDID = 21,
    // A LUN record file could not be read.
    QRN_ERR_CACHE_RECORD = 26,
    // SSSU's version is not one the provider supports.
    QRN_ERR_VERSION_CHECK = 29,
    QRN_ERR_INIT_FAILED = 30,
    // The framework's credential blob is empty.
    QRN_ERR_EMPTY_CREDENTIALS = 31,
    // A shared disk is presented to the host on another LUN than the LUN map holds for it.
    QRN_ERR_PRESENTED_ON_OTHER_LUN = 1092
};

// Severity of a message (qrn_eseverity), as the host's callback receives it.
enum qrn_severity {
    // The course of an operation (trace level 3).
    QRN_SEVERITY_INFO = 1,
    // A condition the provider diagnosed itself, such as missing credentials (trace level 2).
    QRN_SEVERITY_WARNING = 2,
    // A failed operation, and every message of the catch ladder (trace level 1).
    QRN_SEVERITY_ERROR = 3,
    // Detail (every other trace level).
    QRN_SEVERITY_DETAIL = 4
};

#ifdef __cplusplus
}  // extern "C"
#endif

#endif
