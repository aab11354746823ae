#include "AccountScreens.h"
#include "Appearance.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace clockwell {
namespace {

using namespace test;
using namespace palette;

/// The spacing between the elements of a form, not including the padding that some add above themselves.
constexpr qreal spacing = 6;

class SignedOutAppearanceTest : public AccountScreens
{
protected:
    void follow(const QString &link, const QString &title)
    {
        ASSERT_TRUE(stage->click(link));
        ASSERT_TRUE(arrivesAt(title));
    }
};

TEST_F(SignedOutAppearanceTest, TheSignIn)
{
    expectAppearances(*top(), {
                                  logo(),
                                  text(u"Qorvane"_s, white, 17, Bold),
                                  text(u"Sign in to mark attendance"_s, textSecondary, 12),
                                  text(u"EMAIL"_s, textMuted, 10, Medium),
                                  shape(surface, 11, spacing),
                                  text(u"name@example.org"_s, textMuted, 17),
                                  text(u"PASSWORD"_s, textMuted, 10, Medium, spacing),
                                  shape(surface, 11, spacing),
                                  text(u"••••••••"_s, textMuted, 17),
                                  symbol(u"eye"_s, textMuted, 22),
                                  text(u"Forgot password?"_s, brand, 13, Normal, spacing + 4),
                                  shape(brand, 12, spacing),
                                  text(u"Sign in"_s, white, 17, DemiBold),
                                  text(u"New here?"_s, textMuted, 14),
                                  text(u"Create an account"_s, brand, 14, DemiBold),
                              });
}

TEST_F(SignedOutAppearanceTest, TheSignInOfAnUnverifiedAddress)
{
    server.expect("POST", "/api/auth/login")
        .reply(403, R"({"error":"EMAIL_NOT_VERIFIED","message":"Not yet."})");
    ASSERT_TRUE(stage->type(u"Email"_s, u"a"_s));
    ASSERT_TRUE(stage->type(u"Password"_s, u"b"_s));
    stage->click(u"Sign in"_s);
    ASSERT_TRUE(stage->waitFor(u"Enter verification code"_s));
    expectAppearance(*top(), text(u"Not yet."_s, danger, 13, Normal, spacing + 6));
    expectAppearance(*top(), text(u"Enter verification code"_s, warning, 13, DemiBold, spacing + 2));
}

TEST_F(SignedOutAppearanceTest, TheFieldsOfTheSignIn)
{
    expectFields(*top(), {{u"Email"_s, u"name@example.org"_s, false, FieldTraits::EmailKeyboard,
                           FieldTraits::UserName, FieldTraits::NoAutocap},
                          {u"Password"_s, u"••••••••"_s, true, FieldTraits::DefaultKeyboard,
                           FieldTraits::Password, FieldTraits::NoAutocap}});
}

TEST_F(SignedOutAppearanceTest, TheSignUp)
{
    follow(u"Create an account"_s, u"Sign up"_s);
    expectAppearances(
        *top(), {
                    symbol(u"chevron.left"_s, brand, 22),
                    text(u"Sign up"_s, textPrimary, 17, DemiBold),
                    logo(),
                    text(u"Qorvane"_s, white, 17, Bold),
                    text(u"Create your employee account"_s, textSecondary, 12),
                    text(u"FULL NAME"_s, textMuted, 10, Medium),
                    shape(surface, 11),
                    text(u"Ada Byron"_s, textMuted, 17),
                    text(u"EMAIL"_s, textMuted, 10, Medium, spacing + 6),
                    shape(surface, 11),
                    text(u"name@example.org"_s, textMuted, 17),
                    text(u"PHONE (OPTIONAL)"_s, textMuted, 10, Medium, spacing + 6),
                    shape(surface, 11),
                    text(u"+92 300 0000000"_s, textMuted, 17),
                    text(u"COMPANY CODE (OPTIONAL)"_s, textMuted, 10, Medium, spacing + 6),
                    shape(surface, 11),
                    text(u"e.g. DEMO"_s, textMuted, 17),
                    text(u"PASSWORD"_s, textMuted, 10, Medium, spacing + 6),
                    shape(surface, 11),
                    text(u"Create a password"_s, textMuted, 17),
                    symbol(u"eye"_s, textMuted, 22),
                    text(u"Min 8 chars with upper, lower & a number."_s, textMuted, 11, Normal, spacing + 2),
                    shape(brand, 12, spacing + 10),
                    text(u"Create account"_s, white, 17, DemiBold),
                });
}

TEST_F(SignedOutAppearanceTest, TheRefusedSignUp)
{
    follow(u"Create an account"_s, u"Sign up"_s);
    server.expect("POST", "/api/auth/signup").reply(409, R"({"message":"Taken."})");
    for (const auto &field : {u"Full name"_s, u"Email"_s, u"Password"_s})
        ASSERT_TRUE(stage->type(field, u"x"_s));
    stage->click(u"Create account"_s);
    ASSERT_TRUE(stage->waitFor(u"Taken."_s));
    ASSERT_TRUE(becomesEnabled(u"Create account"_s));
    expectAppearance(*top(), text(u"Taken."_s, danger, 13, Normal, spacing + 6));
    expectAppearance(*top(), text(u"Create account"_s, white, 17, DemiBold));
}

TEST_F(SignedOutAppearanceTest, TheFieldsOfTheSignUp)
{
    follow(u"Create an account"_s, u"Sign up"_s);
    expectFields(*top(), {{u"Full name"_s, u"Ada Byron"_s, false, FieldTraits::DefaultKeyboard,
                           FieldTraits::Name, FieldTraits::Words},
                          {u"Email"_s, u"name@example.org"_s, false, FieldTraits::EmailKeyboard,
                           FieldTraits::UserName, FieldTraits::NoAutocap},
                          {u"Phone (optional)"_s, u"+92 300 0000000"_s, false, FieldTraits::PhonePad,
                           FieldTraits::TelephoneNumber, FieldTraits::NoAutocap},
                          {u"Company code (optional)"_s, u"e.g. DEMO"_s, false, FieldTraits::DefaultKeyboard,
                           FieldTraits::NoContentType, FieldTraits::AllCharacters},
                          {u"Password"_s, u"Create a password"_s, true, FieldTraits::DefaultKeyboard,
                           FieldTraits::NewPassword, FieldTraits::NoAutocap}});
}

TEST_F(SignedOutAppearanceTest, TheForgotPasswordScreen)
{
    follow(u"Forgot password?"_s, u"Forgot password"_s);
    expectAppearances(
        *top(), {
                    symbol(u"chevron.left"_s, brand, 22),
                    text(u"Forgot password"_s, textPrimary, 17, DemiBold),
                    logo(),
                    text(u"Qorvane"_s, white, 17, Bold),
                    text(u"Reset your password"_s, textSecondary, 12),
                    text(u"Enter your account email. We'll send a 6-digit reset code."_s, textSecondary, 13),
                    text(u"EMAIL"_s, textMuted, 10, Medium),
                    shape(surface, 11),
                    text(u"name@example.org"_s, textMuted, 17),
                    shape(brand, 12),
                    text(u"Send reset code"_s, white, 17, DemiBold),
                });
    expectFields(*top(), {{u"Email"_s, u"name@example.org"_s, false, FieldTraits::EmailKeyboard,
                           FieldTraits::UserName, FieldTraits::NoAutocap}});
}

TEST_F(SignedOutAppearanceTest, TheForgotPasswordScreenAfterErrorAndSuccess)
{
    follow(u"Forgot password?"_s, u"Forgot password"_s);
    server.expect("POST", "/api/auth/forgot-password").reply(429, R"({"message":"Too soon."})");
    server.expect("POST", "/api/auth/forgot-password").reply(200, R"({"message":"On its way."})");
    stage->type(u"Email"_s, u"a"_s);
    stage->click(u"Send reset code"_s);
    ASSERT_TRUE(stage->waitFor(u"Too soon."_s));
    expectAppearance(*top(), text(u"Too soon."_s, danger, 13));
    ASSERT_TRUE(becomesEnabled(u"Send reset code"_s));
    stage->click(u"Send reset code"_s);
    ASSERT_TRUE(stage->waitFor(u"On its way."_s));
    expectAppearance(*top(), text(u"On its way."_s, success, 13));
}

TEST_F(SignedOutAppearanceTest, TheEmailVerification)
{
    openCodeScreen(u"ada@example.org"_s, OtpPurpose::VerifyEmail);
    expectAppearances(*top(), {
                                  symbol(u"chevron.left"_s, brand, 22),
                                  text(u"Verify email"_s, textPrimary, 17, DemiBold),
                                  logo(),
                                  text(u"Qorvane"_s, white, 17, Bold),
                                  text(u"Verify your email"_s, textSecondary, 12),
                                  text(u"We sent a 6-digit code to"_s, textSecondary, 13),
                                  text(u"ada@example.org"_s, textPrimary, 14, DemiBold),
                                  text(u"VERIFICATION CODE"_s, textMuted, 10, Medium),
                                  shape(surface, 11),
                                  text(u"123456"_s, textMuted, 17),
                                  shape(brand, 12, spacing + 10),
                                  text(u"Verify"_s, white, 17, DemiBold),
                                  text(u"Resend code"_s, brand, 13),
                              });
    expectFields(*top(), {{u"Verification code"_s, u"123456"_s, false, FieldTraits::NumberPad,
                           FieldTraits::OneTimeCode, FieldTraits::NoAutocap}});
}

TEST_F(SignedOutAppearanceTest, ThePasswordReset)
{
    openCodeScreen(u"ada@example.org"_s, OtpPurpose::ResetPassword);
    expectAppearances(*top(), {
                                  symbol(u"chevron.left"_s, brand, 22),
                                  text(u"Reset password"_s, textPrimary, 17, DemiBold),
                                  logo(),
                                  text(u"Qorvane"_s, white, 17, Bold),
                                  text(u"Reset your password"_s, textSecondary, 12),
                                  text(u"We sent a 6-digit code to"_s, textSecondary, 13),
                                  text(u"ada@example.org"_s, textPrimary, 14, DemiBold),
                                  text(u"VERIFICATION CODE"_s, textMuted, 10, Medium),
                                  shape(surface, 11),
                                  text(u"123456"_s, textMuted, 17),
                                  text(u"NEW PASSWORD"_s, textMuted, 10, Medium, spacing + 6),
                                  shape(surface, 11),
                                  text(u"New password"_s, textMuted, 17),
                                  symbol(u"eye"_s, textMuted, 22),
                                  shape(brand, 12, spacing + 10),
                                  text(u"Reset password"_s, white, 17, DemiBold),
                                  text(u"Resend code"_s, brand, 13),
                              });
    expectFields(*top(), {{u"Verification code"_s, u"123456"_s, false, FieldTraits::NumberPad,
                           FieldTraits::OneTimeCode, FieldTraits::NoAutocap},
                          {u"New password"_s, u"New password"_s, true, FieldTraits::DefaultKeyboard,
                           FieldTraits::NewPassword, FieldTraits::NoAutocap}});
}

class OtpAppearanceTest : public SignedOutAppearanceTest,
                          public ::testing::WithParamInterface<OtpPurpose::Purpose>
{};

TEST_P(OtpAppearanceTest, ResendErrorAndSuccess)
{
    openCodeScreen(u"ada@example.org"_s, GetParam());
    server.expect("POST", "/api/auth/resend-otp").reply(429, R"({"message":"Too soon."})");
    server.expect("POST", "/api/auth/resend-otp").reply(200, R"({"message":"On its way."})");
    stage->click(u"Resend code"_s);
    ASSERT_TRUE(stage->waitFor(u"Too soon."_s));
    expectAppearance(*top(), text(u"Too soon."_s, danger, 13, Normal, spacing + 6));
    stage->click(u"Resend code"_s);
    ASSERT_TRUE(stage->waitFor(u"Resend code in 60s"_s));
    expectAppearance(*top(), text(u"On its way."_s, success, 13, Normal, spacing + 6));
    expectAppearance(*top(), text(u"Resend code in 60s"_s, textMuted, 13));
    const auto resend = stage->find(u"Resend code in 60s"_s, QAccessible::Button);
    EXPECT_NEAR(resend->rect.center().x(), stage.root()->width() / 2, 1);
}

INSTANTIATE_TEST_SUITE_P(SignedOut, OtpAppearanceTest,
                         ::testing::Values(OtpPurpose::VerifyEmail, OtpPurpose::ResetPassword));

} // namespace
} // namespace clockwell
