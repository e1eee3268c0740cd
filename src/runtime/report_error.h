// How the base layer ends its calls: one function keeps the code and logs a failure.
#pragma once

#include "runtime/contexts.h"

namespace zlv {

// Keeps the code in this thread's base record; a failure also goes to its log, with the name of the function and the
// time of day. `name` and `extra` may be null.
void MVReportError(u32 code, const char* name, const char* extra);

// The same for a caller that has the record at hand.
void ReportBaseError(MVThreadContext& context, Error code, const char* name, const char* extra);

}  // namespace zlv
