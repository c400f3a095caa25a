// A recorder of what reaches the process's error manager, for the provider's own layers.
#ifndef PROCESS_RECORDER_H
#define PROCESS_RECORDER_H

#include "hpeva_process.h"
#include "message_recorder.h"

namespace tamlin_test {

// One recorder on the process's error manager, made at the first call and kept for good.
inline MessageRecorder &processRecorder()
{
    static MessageRecorder *recorder = [] {
        auto *r = new MessageRecorder;
        qorin_pdk_4_4::CFiErrorManagerPtr errors;
        getErrorManagerSingleton(errors, false);
        errors->registerHandler(r);
        return r;
    }();
    return *recorder;
}

}  // namespace tamlin_test

#endif
