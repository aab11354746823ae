#include "Appearance.h"
#include "ProfileScreen.h"

using namespace Qt::StringLiterals;

namespace clockwell {
namespace {

using namespace test;
using namespace palette;

class ProfileAppearanceTest : public ProfileScreen
{
protected:
    void SetUp() override
    {
        server.expect("GET", "/api/auth/me").anyNumber().never();
        show(userJson("Kel Voss"));
    }

    /// The rectangle of the nth drawn element with this name.
    QRectF drawnRect(const QString &name, int nth = 0)
    {
        for (const DrawnItem &drawn : drawnItems(*stage->root()))
            if (drawn.appearance.name == name && nth-- == 0)
                return drawn.rect;
        ADD_FAILURE() << name.toStdString() << " is not drawn";
        return {};
    }
};

TEST_F(ProfileAppearanceTest, TheProfile)
{
    expectAppearances(*stage->root(), {
                                          text(u"Profile"_s, textPrimary, 17, DemiBold),
                                          shape(surface, 39),
                                          text(u"KV"_s, brand, 28, Bold),
                                          text(u"Kel Voss"_s, textPrimary, 19, Bold),
                                          text(u"kel@example.org"_s, textSecondary, 13),
                                          shape(card, 14),
                                          text(u"Role"_s, textSecondary, 14),
                                          text(u"HR MANAGER"_s, textPrimary, 14, Medium),
                                          rule(12),
                                          text(u"Phone"_s, textSecondary, 14, Normal, 12),
                                          text(u"+92 300 1234567"_s, textPrimary, 14, Medium, 12),
                                          rule(12),
                                          text(u"Account status"_s, textSecondary, 14, Normal, 12),
                                          text(u"Approved"_s, textPrimary, 14, Medium, 12),
                                          shape(card, 12),
                                          symbol(u"key.fill"_s, textPrimary, 18),
                                          text(u"Change password"_s, textPrimary, 15, Medium),
                                          symbol(u"chevron.right"_s, textMuted, 13),
                                          shape(card, 12),
                                          symbol(u"rectangle.portrait.and.arrow.right"_s, danger, 18),
                                          text(u"Sign out"_s, danger, 15, Medium),
                                          symbol(u"chevron.right"_s, textMuted, 13),
                                      });
}

TEST_F(ProfileAppearanceTest, TheInitialsAreCenteredInACircle)
{
    const QRectF circle = drawnRect(u"[]"_s);
    EXPECT_EQ(circle.size(), QSizeF(78, 78));
    EXPECT_EQ(circle.center().x(), stage->root()->width() / 2);
    EXPECT_EQ(drawnRect(u"KV"_s).center(), circle.center());
    EXPECT_EQ(drawnRect(u"Kel Voss"_s).center().x(), circle.center().x());
}

TEST_F(ProfileAppearanceTest, TheRowsArePaddedByTwelvePoints)
{
    const QRectF block = drawnRect(u"[]"_s, 1);
    EXPECT_EQ(drawnRect(u"Role"_s).top(), block.top() + 12);
    EXPECT_EQ(drawnRect(u"Approved"_s).bottom(), block.bottom() - 12);
    for (const auto &[label, value] :
         {std::pair(u"Role"_s, u"HR MANAGER"_s), std::pair(u"Phone"_s, u"+92 300 1234567"_s),
          std::pair(u"Account status"_s, u"Approved"_s)}) {
        EXPECT_EQ(drawnRect(label).left(), block.left() + 12) << label.toStdString();
        EXPECT_EQ(drawnRect(value).right(), block.right() - 12) << value.toStdString();
        EXPECT_EQ(drawnRect(label).top(), drawnRect(value).top()) << label.toStdString();
    }
}

TEST_F(ProfileAppearanceTest, TheActionsHaveTheSameLayout)
{
    int row = 2;
    for (const auto &[name, title] : {std::pair(u"<key.fill>"_s, u"Change password"_s),
                                      std::pair(u"<rectangle.portrait.and.arrow.right>"_s, u"Sign out"_s)}) {
        const QRectF ground = drawnRect(u"[]"_s, row);
        const QRectF symbol = drawnRect(name);
        const QRectF chevron = drawnRect(u"<chevron.right>"_s, row - 2);
        EXPECT_LE(symbol.width(), 22) << title.toStdString();
        // To the left of the title: 14 points of padding, the box of 22 points, a gap of 12 points.
        EXPECT_EQ(symbol.center().x(), ground.left() + 14 + 11) << title.toStdString();
        EXPECT_EQ(drawnRect(title).left(), ground.left() + 14 + 22 + 12) << title.toStdString();
        EXPECT_EQ(chevron.right(), ground.right() - 14) << title.toStdString();
        for (const QRectF &part : {symbol, drawnRect(title), chevron})
            EXPECT_NEAR(part.center().y(), ground.center().y(), 0.5) << title.toStdString();
        ++row;
    }
}

} // namespace
} // namespace clockwell
