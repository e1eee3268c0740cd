#include "runtime/report_error.h"

namespace zlv {

namespace {

constexpr size_t kMessageBytes = 1000;
constexpr u32 kLogLevel = 3;

// Writes text into a fixed buffer; what does not fit is cut, and a terminator always fits.
class MessageWriter {
public:
    explicit MessageWriter(char (&buffer)[kMessageBytes]) : next_(buffer), last_(buffer + kMessageBytes - 1)
    {
        *next_ = 0;
    }

    MessageWriter& Text(const char* text)
    {
        while (*text && next_ < last_) *next_++ = *text++;
        *next_ = 0;
        return *this;
    }

    // Signed, as a log reader expects of a "%d".
    MessageWriter& Number(i32 number)
    {
        char digits[12];
        char* first = digits + sizeof digits - 1;
        *first = 0;
        u32 rest = number < 0 ? 0u - u32(number) : u32(number);
        do {
            *--first = char('0' + rest % 10);
            rest /= 10;
        } while (rest);
        if (number < 0) *--first = '-';
        return Text(first);
    }

    MessageWriter& TwoDigits(u32 number)
    {
        if (number < 10) Text("0");
        return Number(i32(number));
    }

private:
    char* next_;
    char* const last_;
};

}  // namespace

void ReportBaseError(MVThreadContext& context, Error code, const char* name, const char* extra)
{
    if (context.reportHold > 0) return;
    if (code != Error::None) {
        const platform::TimeOfDay time = platform::LocalTime();
        char message[kMessageBytes];
        MessageWriter writer(message);
        writer.Text("Error ").Number(i32(code)).Text(" in ").Text(name ? name : "(unspecified function)");
        writer.Text(" (").TwoDigits(time.hours).Text(":").TwoDigits(time.minutes).Text(":").TwoDigits(time.seconds);
        writer.Text(")");
        if (extra) writer.Text(" [").Text(extra).Text("]");
        context.errorLog.Append(message, code, kLogLevel);
    }
    context.lastError = code;
}

void MVReportError(u32 code, const char* name, const char* extra)
{
    if (MVThreadContext* const context = baseContexts.Get()) ReportBaseError(*context, Error(code), name, extra);
}

}  // namespace zlv
