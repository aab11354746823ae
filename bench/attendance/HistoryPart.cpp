#include "Ratio.h"
#include "attendance/AttendanceStore.h"
#include "net/APIClient.h"
#include "net/SessionEvents.h"
#include "support/MemoryTokenStore.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickView>
#include <QThread>
#include <QTimer>

#include <malloc.h>
#include <time.h>

#include <cstdio>

// history_part URL DAYS: shows the history of the server at that address, which has so many days, scrolls
// through it, and loads it again when the server has one day more. Prints in one line, in milliseconds of the
// UI thread's own processor time: the update of the model and the list by the loaded history; the frame that
// shows the first rows; the longest event until then; of the frames while scrolling the median and the
// slowest but for one in a hundred; the longest event of the second load; and in bytes what is on the heap at
// the end.

using namespace clockwell;
using namespace Qt::StringLiterals;

namespace {

constexpr int frames = 400;
constexpr int framePoints = 24; // of scrolling
constexpr int limitMs = 20'000;

/// Of this thread, in milliseconds: what other processes do meanwhile is not in it.
double processorTime()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1000 + static_cast<double>(now.tv_nsec) / 1e6;
}

/// Knows how long the UI thread was at one event: nothing else is drawn or answered meanwhile.
class Application : public QGuiApplication
{
public:
    using QGuiApplication::QGuiApplication;

    bool notify(QObject *receiver, QEvent *event) override
    {
        if (QThread::currentThread() != thread())
            return QGuiApplication::notify(receiver, event);
        if (m_depth++ == 0)
            m_start = processorTime();
        const bool result = QGuiApplication::notify(receiver, event);
        if (--m_depth == 0)
            m_longest = std::max(m_longest, sinceStart());
        return result;
    }
    double sinceStart() const { return processorTime() - m_start; }
    double takeLongest() { return std::exchange(m_longest, 0); }

private:
    int m_depth = 0;
    double m_start = 0;
    double m_longest = 0;
};

/// The screen on its own, and how it is driven.
class Screen
{
public:
    Screen(Application &application, AttendanceStore &store) : m_application(application)
    {
        m_view.engine()->addImportPath(u"qrc:/qt/qml"_s);
        m_view.setInitialProperties({{u"attendance"_s, QVariant::fromValue(&store)}});
        m_view.setResizeMode(QQuickView::SizeRootObjectToView);
        m_view.resize(390, 844);
        m_view.setSource(QUrl(u"qrc:/qt/qml/Clockwell/Attendance/HistoryView.qml"_s));
        m_view.show();
        m_list = m_view.rootObject()->findChild<QQuickItem *>(u"days"_s);
    }
    int days() const { return m_list->property("count").toInt(); }
    QObject *part(const QString &name) const { return m_view.rootObject()->findChild<QObject *>(name); }
    bool isIdle() const { return !part(u"disc"_s)->property("visible").toBool(); }
    /// Until a frame was shown for which `condition` holds, asleep meanwhile. The processor time of the event
    /// that drew it; less than 0 after the limit.
    double frameWith(const std::function<bool()> &condition)
    {
        double time = -1;
        QEventLoop loop;
        QTimer::singleShot(limitMs, &loop, [&loop] { loop.exit(1); });
        QObject::connect(&m_view, &QQuickWindow::frameSwapped, &loop, [&] {
            if (time >= 0 || !condition())
                return;
            time = m_application.sinceStart();
            loop.quit();
        });
        loop.exec();
        return time;
    }
    /// Scrolls on by a fixed distance, and back from the end where the list is short. The processor time
    /// until the next frame is shown.
    double scroll()
    {
        const qreal top = m_list->property("originY").toReal();
        const qreal bottom = top + m_list->property("contentHeight").toReal() - m_list->height();
        const qreal y = m_list->property("contentY").toReal();
        if (y + framePoints > bottom)
            m_step = -framePoints;
        else if (y - framePoints < top)
            m_step = framePoints;
        const double start = processorTime();
        m_list->setProperty("contentY", y + m_step);
        return frameWith([] { return true; }) < 0 ? -1 : processorTime() - start;
    }

private:
    Application &m_application;
    QQuickView m_view;
    QQuickItem *m_list = nullptr;
    int m_step = framePoints;
};

std::size_t heap()
{
    const auto info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QSG_RENDER_LOOP", "basic"); // all of a frame on this thread
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    Application application(argc, argv);
    const int days = QString::fromLocal8Bit(argv[2]).toInt();
    test::MemoryTokenStore tokens(u"a"_s, u"r"_s);
    SessionEvents events;
    APIClient::Options options;
    options.baseURL = QUrl(QString::fromLocal8Bit(argv[1]));
    APIClient api(std::move(options), tokens, events);
    AttendanceStore store(api);

    // The first to hear of the history; the last is connected when all of the screen is.
    double begin = 0;
    double updated = 0;
    QObject::connect(&store, &AttendanceStore::historyChanged, [&] { begin = processorTime(); });
    Screen screen(application, store);
    QObject::connect(&store, &AttendanceStore::historyChanged, [&] { updated = processorTime(); });

    application.takeLongest();
    const double paint = screen.frameWith([&] { return screen.days() == days; });
    const double update = updated - begin;
    const double load = application.takeLongest();
    if (paint < 0 || !(screen.isIdle() || screen.frameWith([&] { return screen.isIdle(); }) >= 0))
        return 1;
    std::vector<double> times;
    times.reserve(frames);
    for (int i = 0; i < frames; ++i)
        times.push_back(screen.scroll());
    std::ranges::sort(times);
    if (times.front() < 0)
        return 1;
    application.takeLongest();
    QMetaObject::invokeMethod(screen.part(u"pull"_s), "refresh");
    if (screen.frameWith([&] { return screen.days() == days + 1; }) < 0)
        return 1;
    std::printf("%.3f %.3f %.3f %.3f %.3f %.3f %zu\n", update, paint, load, times.at(frames / 2),
                times.at(frames * 99 / 100), application.takeLongest(), heap());
    return 0;
}
