#include "server/mail/MailTexts.h"

namespace clockwell::server {

namespace {

std::string codeLines(const MailedCode &code)
{
    return "\n    " + code.first +
           "\n"
           "\n"
           "Please enter it in the app within 10 minutes. If the app asks for a second code,\n"
           "enter " +
           code.second + ".";
}

} // namespace

Mail verificationMail(const std::string &to, const MailedCode &code, bool contested)
{
    std::string text = "Welcome to Clockwell!\n"
                       "\n"
                       "Your verification code is\n" +
                       codeLines(code) +
                       " After that, an administrator\n"
                       "has to approve your account before you can sign in.\n"
                       "\n";
    if (contested)
        text += "There is more than one sign-up with your address, and their passwords differ. So\n"
                "none of them will be set when you enter a code: please choose yours then with\n"
                "\"Forgot password?\" in the app. If you did not sign up just now but did before,\n"
                "enter the code of your own sign-up, or ask for another one in the app. If you did\n"
                "not sign up at all, ignore this message; nothing will happen.\n";
    else
        text += "You did not ask for this code just now? Then do not enter it: it would confirm\n"
                "a password that somebody else has chosen. If you had signed up before, choose\n"
                "\"Forgot password?\" in the app. Otherwise ignore this message; nothing will\n"
                "happen.\n";
    return {to, "Your Clockwell verification code", text};
}

Mail resetMail(const std::string &to, const MailedCode &code, Precedence precedence)
{
    return {to, "Your Clockwell password reset code",
            "Hello,\n"
            "\n"
            "your code for choosing a new Clockwell password is\n" +
                codeLines(code) +
                " All devices that are signed in\n"
                "to your account will be signed out.\n"
                "\n"
                "You did not ask for it? Then ignore this message; your password stays as it\n"
                "is. Never tell anybody this code.\n",
            precedence};
}

Mail codeMail(const std::string &to, const MailedCode &code)
{
    return {to, "Your Clockwell code",
            "Hello,\n"
            "\n"
            "your Clockwell code is\n" +
                codeLines(code) +
                "\n"
                "\n"
                "You did not ask for this code just now? Then do not enter it: it might confirm\n"
                "a password that somebody else has chosen. If you had signed up before, choose\n"
                "\"Forgot password?\" in the app. Otherwise ignore this message; nothing will\n"
                "happen. Never tell anybody this code.\n"};
}

Mail choosePasswordMail(const std::string &to)
{
    return {to, "Please choose a password for Clockwell",
            "Hello,\n"
            "\n"
            "your e-mail address is verified. More than one person signed up with it, and\n"
            "only you can read this message: so your account has none of their passwords.\n"
            "\n"
            "Please choose yours with \"Forgot password?\" in the app.\n",
            Precedence::Own};
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
