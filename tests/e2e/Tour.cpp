#include "Tour.h"

#include <QTextStream>

using namespace Qt::StringLiterals;

namespace clockwell::test {

Tour::Tour(QQuickWindow *window, QString directory) : m_screen(window), m_directory(std::move(directory)) {}

void Tour::step(const QString &title, const std::function<bool(ScreenDriver &)> &act, const QString &expected)
{
    if (m_failed)
        return;
    ++m_count;
    QTextStream out(stdout);
    out << m_count << ". " << title << Qt::endl;
    if (!m_screen.waitUntilStill() || !act(m_screen))
        return fail(title, u"the control was not on the screen or could not be used"_s);
    if (m_screen.waitForPrefix(expected, std::chrono::seconds(20)).isEmpty())
        return fail(title, u"the screen never showed \"%1\""_s.arg(expected));
    QString slug = title.toLower();
    slug.replace(QChar(u' '), QChar(u'-')).remove(QChar(u',')).remove(QChar(u'.'));
    const QString picture = u"%1/%2-%3.png"_s.arg(m_directory).arg(m_count, 2, 10, QChar(u'0')).arg(slug);
    const QString texts = m_screen.texts().join(u" | "_s);
    if (!m_screen.savePng(picture))
        return fail(title, u"the screenshot could not be written to "_s + picture);
    out << "   screen: " << texts << Qt::endl << "   screenshot: " << picture << Qt::endl;
}

void Tour::fail(const QString &title, const QString &why)
{
    m_failed = true;
    m_screen.savePng(m_directory + u"/failed.png"_s);
    QTextStream(stdout) << "   FAILED at \"" << title << "\": " << why << "\n   the screen:\n"
                        << m_screen.dump() << Qt::endl;
}

} // namespace clockwell::test
