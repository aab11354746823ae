#include "ComponentStage.h"
#include "support/screen/TextIn.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QInputMethodEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace clockwell::test {
namespace {

/// What is copied from elsewhere often ends in a line break, which a field would hold without showing it.
class OneLine : public ::testing::Test
{
protected:
    ~OneLine() override { QGuiApplication::clipboard()->clear(); }

    QString text() { return stage.item()->property("text").toString(); }
    QString pasted(const QString &copied)
    {
        QGuiApplication::clipboard()->setText(copied);
        stage.item()->setProperty("text", QString());
        stage.item()->forceActiveFocus();
        stage.screen().key(Qt::Key_V, Qt::ControlModifier);
        return text();
    }
    /// What stands in the field after an input method has put `dictated` between `before` and `after`, and an
    /// x has been typed.
    QString dictated(const QString &before, const QString &dictated, const QString &after)
    {
        stage.item()->setProperty("text", QString());
        stage.screen().type(u"Name"_s, before + after);
        for (qsizetype step = 0; step < after.size(); ++step)
            stage.screen().key(Qt::Key_Left);
        QInputMethodEvent commit;
        commit.setCommitString(dictated);
        QCoreApplication::sendEvent(inputIn(stage.item()), &commit);
        stage.screen().typeText(u"x"_s);
        return text();
    }

    ComponentStage stage{"QorField { label: \"Name\" }"};
};

TEST_F(OneLine, LeavesOneLineAsItIs)
{
    EXPECT_EQ(pasted(QString()), QString());
    EXPECT_EQ(pasted(u" a\tb "_s), u" a\tb "_s);
    EXPECT_EQ(dictated(u"a"_s, u"b"_s, u"c"_s), u"abxc"_s);
}

TEST_F(OneLine, DropsLineBreaksAtTheEnds)
{
    EXPECT_EQ(pasted(u"\n\r\n123456\r\n"_s), u"123456"_s);
    EXPECT_EQ(pasted(u"\n\n"_s), QString());
}

TEST_F(OneLine, PutsOneSpaceForLineBreaksInBetween)
{
    EXPECT_EQ(pasted(u"a\nb\r\nc\n\n\nd"_s), u"a b c d"_s);
    EXPECT_EQ(pasted(u"a\u2028b\u2029c\u0085d\ve\ff"_s), u"a b c d e f"_s);
}

TEST_F(OneLine, KeepsTheCursorBehindWhatItStoodBehind)
{
    EXPECT_EQ(dictated(u""_s, u"\nab"_s, u"c"_s), u"abxc"_s);
    EXPECT_EQ(dictated(u"ab"_s, u"\n"_s, u""_s), u"abx"_s);
    EXPECT_EQ(dictated(u""_s, u"\n"_s, u"ab"_s), u"xab"_s);
    EXPECT_EQ(dictated(u"a"_s, u"\nb"_s, u"c"_s), u"a bxc"_s);
}

TEST_F(OneLine, JoinsWhatIsSetFromOutside)
{
    stage.item()->setProperty("text", u"Ada\nByron\n"_s);
    EXPECT_EQ(text(), u"Ada Byron"_s);
}

} // namespace
} // namespace clockwell::test
