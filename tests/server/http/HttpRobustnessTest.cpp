#include "TestServer.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace clockwell::server {

namespace {

std::vector<std::string> seeds()
{
    return {
        get("/api/attendance/distance?lat=12.5&lng=%2B77.1", "Authorization: Bearer abc\r\n"),
        post("/api/auth/login", R"({"email":"a@b.c","password":"x"})", "Content-Type: application/json\r\n"),
        "POST /a HTTP/1.1\r\nHost: x\r\nTransfer-Encoding: chunked\r\n\r\n5;e=1\r\nhello\r\n0\r\nX: "
        "y\r\n\r\n",
        "POST /a HTTP/1.1\r\nHost: x\r\nContent-Length: 3\r\nExpect: 100-continue\r\n\r\nabc",
        get("/a") + get("/b") + post("/c", "d"),
        "HEAD /%C3%A4 HTTP/1.0\r\nConnection: keep-alive\r\n\r\n",
        "OPTIONS * HTTP/1.1\r\nHost: x\r\n\r\n"};
}

/// Deterministic: a failure names its seed and can be run again.
class Mutator
{
public:
    explicit Mutator(unsigned seed) : m_random(seed) {}

    std::string mutate(std::string bytes)
    {
        for (std::size_t i = 0, count = 1 + below(4); i < count && !bytes.empty(); ++i)
            mutateOnce(bytes);
        return bytes;
    }

    std::size_t below(std::size_t limit) { return m_random() % limit; }

private:
    void mutateOnce(std::string &bytes)
    {
        static const std::vector<std::string> tokens{"\r\n",
                                                     "\n",
                                                     "\r",
                                                     std::string(1, '\0'),
                                                     "\r\n\r\n",
                                                     ":",
                                                     " ",
                                                     "%",
                                                     "%zz",
                                                     "%ff",
                                                     "Content-Length: 99999999\r\n",
                                                     "0\r\n\r\n",
                                                     "\t",
                                                     "HTTP/9.9",
                                                     "\xFF",
                                                     "?",
                                                     "&&==",
                                                     "Transfer-Encoding: chunked\r\n",
                                                     "fffffffffffffff\r\n",
                                                     "\r\n ",
                                                     std::string(20'000, 'A')};
        const std::size_t at = below(bytes.size());
        switch (below(5)) {
        case 0:
            bytes[at] = static_cast<char>(m_random());
            break;
        case 1:
            bytes.erase(at, 1 + below(20));
            break;
        case 2:
            bytes.insert(at, tokens[below(tokens.size())]);
            break;
        case 3:
            bytes.insert(at, bytes.substr(below(bytes.size()), 1 + below(60)));
            break;
        default:
            bytes.resize(at);
        }
    }

    std::mt19937 m_random;
};

/// Every answer in `all` begins with a status line of this server; nothing of the input is echoed in between.
bool isSequenceOfAnswers(const std::string &all)
{
    return all.empty() || all.compare(0, 9, "HTTP/1.1 ") == 0;
}

} // namespace

TEST(HttpRobustnessTest, TwoThousandMutatedRequestsNeitherCrashNorHangIt)
{
    TestServer server([](const Request &request) { return Response{200, request.body, "text/plain", {}}; });
    const auto originals = seeds();
    int answered = 0, refused = 0;
    constexpr unsigned rounds = 20, atOnce = 100;
    for (unsigned round = 0; round < rounds; ++round) {
        std::vector<std::unique_ptr<RawClient>> clients;
        for (unsigned i = 0; i < atOnce; ++i) {
            Mutator mutator(round * atOnce + i);
            const std::string bytes = mutator.mutate(originals[mutator.below(originals.size())]);
            clients.push_back(std::make_unique<RawClient>(server.port()));
            const std::size_t cut = mutator.below(bytes.size() + 1);
            clients.back()->send(std::string_view(bytes).substr(0, cut));
            clients.back()->send(std::string_view(bytes).substr(cut));
        }
        // Its turn comes after theirs: whole requests have been begun by then.
        ASSERT_EQ(RawClient(server.port()).exchange(get("/")).status, 200);
        for (const auto &client : clients)
            client->endOutput(); // and of the others nothing more is to come
        for (unsigned i = 0; i < atOnce; ++i) {
            const std::string all = clients[i]->receiveAll();
            const unsigned seed = round * atOnce + i;
            ASSERT_TRUE(isSequenceOfAnswers(all)) << "seed " << seed << ": " << all.substr(0, 200);
            answered += all.find("HTTP/1.1 200 ") == std::string::npos ? 0 : 1;
            refused += all.find("HTTP/1.1 400 ") == std::string::npos ? 0 : 1;
            ASSERT_EQ(all.find("HTTP/1.1 500 "), std::string::npos) << "seed " << seed;
        }
        ASSERT_EQ(RawClient(server.port()).exchange(get("/health")).status, 200) << "after round " << round;
    }
    EXPECT_GT(answered, 200) << "some mutations leave a request valid";
    EXPECT_GT(refused, 500) << "and many do not";
}

} // namespace clockwell::server
