// The fuzzer: ZLV_FUZZ_TOPIC names the topic, ZLV_FUZZ_FILL the first bytes of its buffers.
#include "fuzz/topics.h"

#include <cstdio>
#include <cstdlib>

using zlvtest::Topic;

namespace {

const Topic& TopicUnderTest()
{
    const char* const name = std::getenv("ZLV_FUZZ_TOPIC");
    for (const Topic& topic : zlvtest::Topics()) {
        if (name && topic.name == name) return topic;
    }
    std::fputs("ZLV_FUZZ_TOPIC names none of these:\n", stderr);
    for (const Topic& topic : zlvtest::Topics()) std::fprintf(stderr, "  %s\n", topic.name.c_str());
    std::exit(2);
}

std::uint8_t FillUnderTest()
{
    const char* const fill = std::getenv("ZLV_FUZZ_FILL");
    return fill ? std::uint8_t(std::atoi(fill)) : 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count)
{
    static const Topic& topic = TopicUnderTest();
    static const std::uint8_t fill = FillUnderTest();
    zlvtest::Host host;
    zlvtest::Input input(bytes, count, fill, host);
    topic.run(input);
    return 0;
}
