#include "Appearance.h"
#include "ProfileScreen.h"

using namespace Qt::StringLiterals;

namespace clockwell {
namespace {

using namespace test;
using namespace palette;

class ChangePasswordAppearanceTest : public ProfileScreen
{
protected:
    void SetUp() override
    {
        server.expect("GET", "/api/auth/me").anyNumber().never();
        show();
        ASSERT_TRUE(openSheet());
    }

    /// The form inside the sheet.
    QQuickItem &form()
    {
        auto *item = qobject_cast<QQuickItem *>(screen().find(u"Update password"_s)->object);
        while (item->metaObject()->indexOfSignal("dismissed()") < 0)
            item = item->parentItem();
        return *item;
    }
};

TEST_F(ChangePasswordAppearanceTest, TheForm)
{
    expectAppearances(form(),
                      {
                          text(u"Cancel"_s, brand, 17),
                          text(u"Change password"_s, textPrimary, 17, DemiBold),
                          text(u"CURRENT PASSWORD"_s, textMuted, 10, Medium),
                          shape(surface, 11),
                          text(u"Current password"_s, textMuted, 17),
                          symbol(u"eye"_s, textMuted, 22),
                          text(u"NEW PASSWORD"_s, textMuted, 10, Medium, 6),
                          shape(surface, 11),
                          text(u"New password"_s, textMuted, 17),
                          symbol(u"eye"_s, textMuted, 22),
                          text(u"Min 8 chars with upper, lower & a number."_s, textMuted, 11, Normal, 2),
                          shape(brand, 12, 10),
                          text(u"Update password"_s, white, 17, DemiBold),
                      });
}

TEST_F(ChangePasswordAppearanceTest, TheFields)
{
    expectFields(form(), {{u"Current password"_s, u"Current password"_s, true, FieldTraits::DefaultKeyboard,
                           FieldTraits::Password, FieldTraits::NoAutocap},
                          {u"New password"_s, u"New password"_s, true, FieldTraits::DefaultKeyboard,
                           FieldTraits::NewPassword, FieldTraits::NoAutocap}});
}

TEST_F(ChangePasswordAppearanceTest, TheRefusedForm)
{
    server.expect("POST", "/api/auth/change-password").reply(400, R"({"message":"No."})");
    ASSERT_TRUE(screen().type(u"Current password"_s, u"a"_s));
    ASSERT_TRUE(screen().type(u"New password"_s, u"b"_s));
    ASSERT_TRUE(screen().click(u"Update password"_s));
    ASSERT_TRUE(screen().waitFor(u"No."_s));
    ASSERT_TRUE(spinUntil([this] { return screen().isEnabled(u"Update password"_s); }));
    expectAppearance(form(), text(u"No."_s, danger, 13, Normal, 6));
    const auto error = screen().find(u"No."_s);
    EXPECT_EQ(screen().find(u"Update password"_s)->rect.top() - (error->rect.bottom() + 1), 10);
}

} // namespace
} // namespace clockwell
