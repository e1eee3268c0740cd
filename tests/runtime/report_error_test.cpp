#include "runtime/report_error.h"

#include "base/table_pass.h"
#include "support/bytes.h"
#include "support/test_hooks.h"

#include <regex>
#include <string>
#include <thread>

namespace zlv {

namespace {

// Runs on a thread of its own, with a log of its own.
template <class Work>
void WithFreshLog(Work work)
{
    std::thread([&] { work(baseContexts.Get()->errorLog); }).join();
}

std::string TextOf(const LogEntry& entry) { return entry.text.GetData() ? entry.text.GetData() : "(none)"; }

const struct {
    const char* shows;
    const char* name;
    const char* extra;
    const char* wanted;  // a regular expression
} kMessages[] = {
    {"name and time", "MV40_Foo", nullptr, R"(Error 5 in MV40_Foo \(\d\d:\d\d:\d\d\))"},
    {"with an extra text", "MV40_Foo", "plane 2", R"(Error 5 in MV40_Foo \(\d\d:\d\d:\d\d\) \[plane 2\])"},
    {"an empty extra text", "MV40_Foo", "", R"(Error 5 in MV40_Foo \(\d\d:\d\d:\d\d\) \[\])"},
    {"no name", nullptr, nullptr, R"(Error 5 in \(unspecified function\) \(\d\d:\d\d:\d\d\))"},
};

TEST(ReportError, ComposesItsMessage)
{
    WithFreshLog([](const ErrorLog& log) {
        u32 count = 0;
        for (const auto& row : kMessages) {
            SCOPE(row.shows);
            MVReportError(5, row.name, row.extra);
            ASSERT_EQ(log.GetCount(), ++count);
            const LogEntry& entry = log[count - 1];
            EXPECT_TRUE(std::regex_match(TextOf(entry), std::regex(row.wanted))) << TextOf(entry);
            EXPECT_EQ(entry.code, Error::BadArgument);
            EXPECT_EQ(entry.level, 3u);
        }
    });
}

const struct {
    u32 hours, minutes, seconds;
    const char* wanted;
} kTimes[] = {
    {9, 5, 7, "(09:05:07)"},    {0, 0, 0, "(00:00:00)"},   {10, 10, 10, "(10:10:10)"},
    {23, 59, 59, "(23:59:59)"}, {9, 10, 60, "(09:10:60)"},
};

TEST(ReportError, TimesHaveTwoDigitsEach)
{
    WithFreshLog([](const ErrorLog& log) {
        for (const auto& row : kTimes) {
            const zlvtest::FixedTime fixed(row.hours, row.minutes, row.seconds);
            MVReportError(5, "F", nullptr);
            EXPECT_EQ(TextOf(log[log.GetCount() - 1]), std::string("Error 5 in F ") + row.wanted);
        }
    });
}

TEST(ReportError, CodesAreWrittenAsSignedNumbers)
{
    WithFreshLog([](const ErrorLog& log) {
        for (const u32 code : {1u, 84u, 2147483647u, 2147483648u, 4294967295u}) MVReportError(code, "F", nullptr);
        const char* const wanted[] = {"Error 1 in", "Error 84 in", "Error 2147483647 in", "Error -2147483648 in",
                                      "Error -1 in"};
        for (u32 i = 0; i < 5; ++i) EXPECT_EQ(TextOf(log[i]).rfind(wanted[i], 0), 0u) << TextOf(log[i]);
    });
}

TEST(ReportError, ALongMessageIsCutAt999Characters)
{
    WithFreshLog([](const ErrorLog& log) {
        const std::string name(2000, 'n');
        MVReportError(5, name.c_str(), "extra");
        const std::string text = TextOf(log[0]);
        EXPECT_EQ(text, ("Error 5 in " + name).substr(0, 999));
    });
}

TEST(ReportError, SixtyFailuresLeaveTheLatestFiftyOne)
{
    WithFreshLog([](const ErrorLog& log) {
        for (u32 i = 1; i <= 60; ++i) {
            MVReportError(i, "F", nullptr);
            EXPECT_EQ(log.GetCount(), i < 51 ? i : 51);
        }
        for (u32 i = 0; i < 51; ++i) EXPECT_EQ(u32(log[i].code), 10 + i);
    });
}

TEST(ReportError, ASuccessClearsTheErrorAndLogsNothing)
{
    WithFreshLog([](const ErrorLog& log) {
        MVReportError(5, "F", nullptr);
        MVReportError(0, "F", nullptr);
        EXPECT_EQ(baseContexts.Get()->lastError, Error::None);
        EXPECT_EQ(log.GetCount(), 1u);
    });
}

TEST(ReportError, HeldBackItChangesNothing)
{
    WithFreshLog([](const ErrorLog& log) {
        MVReportError(5, "F", nullptr);
        baseContexts.Get()->reportHold = 1;
        MVReportError(14, "F", nullptr);
        MVReportError(0, "F", nullptr);
        EXPECT_EQ(baseContexts.Get()->lastError, Error::BadArgument);
        EXPECT_EQ(log.GetCount(), 1u);
        baseContexts.Get()->reportHold = 0;
        MVReportError(14, "F", nullptr);
        EXPECT_EQ(baseContexts.Get()->lastError, Error::Cancelled);
        EXPECT_EQ(log.GetCount(), 2u);
    });
}

TEST(ReportError, AWrapperCalledWithoutABufferLeavesOneEntry)
{
    WithFreshLog([](const ErrorLog& log) {
        EXPECT_EQ(MV40_ApplyLUTsToImage(nullptr, 1, 1, 1, 1, nullptr, 0), 0u);
        ASSERT_EQ(log.GetCount(), 1u);
        EXPECT_EQ(TextOf(log[0]).rfind("Error 5 in MV40_ApplyLUTsToImage (", 0), 0u) << TextOf(log[0]);
    });
}

TEST(ReportError, WithoutMemoryTheEntryHasNoText)
{
    WithFreshLog([](const ErrorLog& log) {
        const zlvtest::FailingCalls failing(zlvtest::FailingCalls::Of::Allocate, 0);
        MVReportError(5, "F", nullptr);
        EXPECT_EQ(baseContexts.Get()->lastError, Error::BadArgument);
        ASSERT_EQ(log.GetCount(), 1u);
        EXPECT_EQ(log[0].text.GetData(), nullptr);
        EXPECT_EQ(log[0].code, Error::BadArgument);
    });
}

}  // namespace
}  // namespace zlv
