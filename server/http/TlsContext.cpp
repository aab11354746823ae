#include "TlsContext.h"

#include <stdexcept>

namespace clockwell::server {

namespace asio = boost::asio;

namespace {

constexpr const char *tls12Ciphers = "ECDHE+AESGCM:ECDHE+CHACHA20";

void loadFiles(asio::ssl::context &context, const std::string &certificateFile,
               const std::string &privateKeyFile)
{
    boost::system::error_code error;
    context.use_certificate_chain_file(certificateFile, error);
    if (error)
        throw std::runtime_error("Cannot use the certificate file " + certificateFile + ": " +
                                 error.message());
    context.use_private_key_file(privateKeyFile, asio::ssl::context::pem, error);
    if (error)
        throw std::runtime_error("Cannot use the private key file " + privateKeyFile + ": " +
                                 error.message());
    if (SSL_CTX_check_private_key(context.native_handle()) != 1)
        throw std::runtime_error("The private key does not belong to the certificate " + certificateFile);
}

} // namespace

std::unique_ptr<asio::ssl::context> makeTlsContext(const std::string &certificateFile,
                                                   const std::string &privateKeyFile)
{
    if (certificateFile.empty() && privateKeyFile.empty())
        return nullptr;
    if (certificateFile.empty() || privateKeyFile.empty())
        throw std::runtime_error("TLS needs both a certificate file and a private key file.");
    auto context = std::make_unique<asio::ssl::context>(asio::ssl::context::tls_server);
    SSL_CTX_set_min_proto_version(context->native_handle(), TLS1_2_VERSION);
    SSL_CTX_set_options(context->native_handle(), SSL_OP_NO_RENEGOTIATION | SSL_OP_NO_COMPRESSION);
    SSL_CTX_set_cipher_list(context->native_handle(), tls12Ciphers);
    loadFiles(*context, certificateFile, privateKeyFile);
    return context;
}

} // namespace clockwell::server
