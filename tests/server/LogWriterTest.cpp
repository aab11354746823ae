#include "server/log/LogWriter.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>

namespace clockwell::server::test {

namespace {

const std::string longLine = std::string(3000, 'x') + "\n";

std::string readWhatIsThere(int descriptor)
{
    std::string text;
    std::array<char, 4096> part{};
    ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    for (auto count = ::read(descriptor, part.data(), part.size()); count > 0;
         count = ::read(descriptor, part.data(), part.size()))
        text.append(part.data(), static_cast<std::size_t>(count));
    return text;
}

} // namespace

/// A socket, as service managers give, and a pipe.
class LogWriterTest : public testing::TestWithParam<bool>
{
protected:
    LogWriterTest()
    {
        std::signal(SIGPIPE, SIG_IGN);
        const bool made =
            GetParam() ? ::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()) == 0 : ::pipe(ends.data()) == 0;
        EXPECT_TRUE(made);
    }
    ~LogWriterTest() override
    {
        ::close(ends[0]);
        ::close(ends[1]);
    }

    std::array<int, 2> ends{-1, -1}; // the reader's, the writer's
};

TEST_P(LogWriterTest, ReaderThatPausesIsWaitedForOnlyAsLongAsAllowed)
{
    LogWriter writer{ends[1]};
    writer.waitUntil(std::chrono::steady_clock::now() + std::chrono::milliseconds{200});
    int written = 0;
    while (written < 10'000 && writer.write(longLine))
        ++written;
    EXPECT_GT(written, 0);
    EXPECT_LT(written, 10'000);
    EXPECT_FALSE(writer.write("lost" + longLine)); // where a short one may still fit
    const std::string before = readWhatIsThere(ends[0]);
    writer.waitUntil(LogWriter::Time::max());
    EXPECT_TRUE(writer.write("again\n"));
    const std::string text = before + readWhatIsThere(ends[0]);
    EXPECT_EQ(text.find("lost"), std::string::npos);
    EXPECT_TRUE(text.ends_with("x\nagain\n")) << "a line that was cut off has swallowed the next one";
}

TEST_P(LogWriterTest, ReaderThatHasGoneCostsTheLine)
{
    LogWriter writer{ends[1]};
    EXPECT_TRUE(writer.write("first\n"));
    ::close(ends[0]);
    EXPECT_FALSE(writer.write("second\n"));
    EXPECT_FALSE(writer.write("third\n"));
}

TEST_P(LogWriterTest, DescriptorStaysAsItIsForThoseWhoShareIt)
{
    const int before = ::fcntl(ends[1], F_GETFL);
    LogWriter writer{ends[1]};
    EXPECT_TRUE(writer.write("line\n"));
    EXPECT_EQ(::fcntl(ends[1], F_GETFL), before);
}

TEST_P(LogWriterTest, NothingIsWrittenInPlaceOfAClosedDescriptor)
{
    const int closed = ::dup(ends[1]);
    ::close(closed);
    LogWriter writer{closed};
    ASSERT_EQ(::dup2(ends[1], closed), closed); // as a connection gets the number of a closed standard error
    EXPECT_FALSE(writer.write("line\n"));
    ::close(closed);
    EXPECT_EQ(readWhatIsThere(ends[0]), "");
}

INSTANTIATE_TEST_SUITE_P(Kinds, LogWriterTest, testing::Bool(),
                         [](const auto &kind) { return kind.param ? "Socket" : "Pipe"; });

} // namespace clockwell::server::test
