#include "server/mail/MailTexts.h"

namespace clockwell::server {

Mail verificationMail(const std::string &to, const std::string &code)
{
    return {to, "Your Clockwell verification code",
            "Welcome to Clockwell!\n"
            "\n"
            "Your verification code is\n"
            "\n"
            "    " +
                code +
                "\n"
                "\n"
                "Please enter it in the app within 10 minutes. After that, an administrator\n"
                "has to approve your account before you can sign in.\n"
                "\n"
                "You did not ask for this code just now? Then do not enter it: it would confirm\n"
                "a password that somebody else has chosen. If you had signed up before, choose\n"
                "\"Forgot password?\" in the app. Otherwise ignore this message; nothing will\n"
                "happen.\n"};
}

Mail resetMail(const std::string &to, const std::string &code)
{
    return {to, "Your Clockwell password reset code",
            "Hello,\n"
            "\n"
            "your code for choosing a new Clockwell password is\n"
            "\n"
            "    " +
                code +
                "\n"
                "\n"
                "Please enter it in the app within 10 minutes. All devices that are signed in\n"
                "to your account will be signed out.\n"
                "\n"
                "You did not ask for it? Then ignore this message; your password stays as it\n"
                "is. Never tell anybody this code.\n"};
}

Mail addressTakenMail(const std::string &to)
{
    return {to, "Somebody tried to sign up with your address",
            "Hello,\n"
            "\n"
            "somebody tried to sign up for Clockwell with your address. You already have an\n"
            "account, and nothing about it has changed.\n"
            "\n"
            "Was it you? Then simply sign in; if you no longer know your password, choose\n"
            "\"Forgot password?\" in the app. Otherwise ignore this message.\n"};
}

} // namespace clockwell::server
