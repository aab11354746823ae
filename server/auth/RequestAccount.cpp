#include "server/auth/RequestAccount.h"

#include "server/auth/Accounts.h"

#include <nlohmann/json.hpp>

#include <utility>

namespace clockwell::server {

namespace {

/// Hears the parts of a JSON text as they are read. Every body of the password lane is one flat object.
class EmailListener : public nlohmann::json_sax<nlohmann::json>
{
public:
    std::string takeEmail() { return std::move(m_email); }

    bool key(string_t &name) override
    {
        m_isEmail = name == "email";
        return true;
    }
    bool string(string_t &value) override
    {
        if (std::exchange(m_isEmail, false))
            m_email = std::move(value); // of several the last one counts, as for the reader of the body
        return true;
    }
    bool start_object(std::size_t /*size*/) override { return !std::exchange(m_isInside, true); }
    bool start_array(std::size_t /*size*/) override { return false; }
    bool end_object() override { return true; }
    bool end_array() override { return true; }
    bool null() override { return true; }
    bool boolean(bool /*value*/) override { return true; }
    bool number_integer(number_integer_t /*value*/) override { return true; }
    bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
    bool number_float(number_float_t /*value*/, const string_t & /*text*/) override { return true; }
    bool binary(binary_t & /*value*/) override { return true; }
    bool parse_error(std::size_t /*position*/, const std::string & /*token*/,
                     const nlohmann::detail::exception & /*error*/) override
    {
        return false;
    }

private:
    std::string m_email;
    bool m_isInside = false;
    bool m_isEmail = false;
};

} // namespace

std::string accountOf(const Request &request)
{
    EmailListener listener;
    nlohmann::json::sax_parse(request.body, &listener);
    const std::string key = emailKey(listener.takeEmail());
    return key.empty() ? request.authorization : key;
}

} // namespace clockwell::server
