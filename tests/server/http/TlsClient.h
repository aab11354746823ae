#pragma once

#include "RawClient.h"

#include <string>
#include <string_view>

using SSL = struct ssl_st;
using SSL_CTX = struct ssl_ctx_st;

namespace clockwell::server {

/// A TLS client over a RawClient's socket that trusts one certificate file.
class TlsClient
{
public:
    /// The lowest and highest protocol version to offer, as OpenSSL's constants.
    struct Versions
    {
        int low = 0;
        int high = 0;
    };

    TlsClient(std::uint16_t port, const std::string &trustedFile, Versions versions);
    ~TlsClient();
    TlsClient(const TlsClient &) = delete;
    TlsClient &operator=(const TlsClient &) = delete;

    bool connected() const { return m_connected; }
    std::string version() const; ///< the agreed one, e.g. "TLSv1.3"
    std::string cipher() const;
    bool send(std::string_view bytes);
    /// Everything up to the end of the stream; `clean` tells whether it ended as TLS wants it.
    std::string receiveAll(bool &clean);

private:
    RawClient m_client;
    SSL_CTX *m_context;
    SSL *m_ssl;
    bool m_connected = false;
};

/// A fresh self-signed certificate for 127.0.0.1 with its key, in files of a folder that goes away with it.
class TestCertificate
{
public:
    TestCertificate(); ///< runs the openssl command; throws std::runtime_error when that fails
    ~TestCertificate();
    TestCertificate(const TestCertificate &) = delete;
    TestCertificate &operator=(const TestCertificate &) = delete;

    std::string certificateFile() const { return m_folder + "/certificate.pem"; }
    std::string keyFile() const { return m_folder + "/key.pem"; }

private:
    std::string m_folder;
};

} // namespace clockwell::server
