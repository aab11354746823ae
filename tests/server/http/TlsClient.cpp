#include "TlsClient.h"

#include <openssl/ssl.h>
#include <sys/socket.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace clockwell::server {

TlsClient::TlsClient(std::uint16_t port, const std::string &trustedFile, Versions versions)
    : m_client(port), m_context(SSL_CTX_new(TLS_client_method()))
{
    SSL_CTX_set_security_level(m_context, 0); // so that this side would go down to any version
    SSL_CTX_set_min_proto_version(m_context, versions.low);
    SSL_CTX_set_max_proto_version(m_context, versions.high);
    SSL_CTX_set_verify(m_context, SSL_VERIFY_PEER, nullptr);
    SSL_CTX_load_verify_locations(m_context, trustedFile.c_str(), nullptr);
    m_ssl = SSL_new(m_context);
    const timeval limit{RawClient::patience.count() / 1000, 0};
    setsockopt(m_client.descriptor(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    SSL_set_fd(m_ssl, m_client.descriptor());
    m_connected = SSL_connect(m_ssl) == 1;
}

TlsClient::~TlsClient()
{
    SSL_free(m_ssl);
    SSL_CTX_free(m_context);
}

std::string TlsClient::version() const
{
    return SSL_get_version(m_ssl);
}

std::string TlsClient::cipher() const
{
    return SSL_get_cipher_name(m_ssl);
}

bool TlsClient::send(std::string_view bytes)
{
    return SSL_write(m_ssl, bytes.data(), static_cast<int>(bytes.size())) == static_cast<int>(bytes.size());
}

std::string TlsClient::receiveAll(bool &clean)
{
    std::string all;
    std::array<char, 16384> chunk{};
    int count = 0;
    while ((count = SSL_read(m_ssl, chunk.data(), static_cast<int>(chunk.size()))) > 0)
        all.append(chunk.data(), static_cast<std::size_t>(count));
    clean = SSL_get_error(m_ssl, count) == SSL_ERROR_ZERO_RETURN;
    if (clean)
        SSL_shutdown(m_ssl);
    return all;
}

TestCertificate::TestCertificate()
{
    std::string pattern = (std::filesystem::temp_directory_path() / "clockwell-tls-XXXXXX").string();
    if (!mkdtemp(pattern.data()))
        throw std::runtime_error("cannot make a folder for the certificate");
    m_folder = pattern;
    const std::string command =
        "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 2 "
        "-subj /CN=localhost -addext subjectAltName=IP:127.0.0.1 -keyout '" +
        keyFile() + "' -out '" + certificateFile() + "' 2>/dev/null";
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("openssl could not make a certificate");
}

TestCertificate::~TestCertificate()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

} // namespace clockwell::server
