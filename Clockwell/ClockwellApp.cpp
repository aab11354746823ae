#include "ClockwellApp.h"

#include "Configuration.h"
#include "attendance/LocationSource.h"
#include "net/SecretServiceTokenStore.h"
#include "ui/DesktopPreferences.h"
#include "ui/Theme.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

namespace clockwell {

ClockwellApp::Parts ClockwellApp::platformParts()
{
    Parts parts;
    parts.client.baseURL = QUrl(QString::fromLatin1(configuredBaseUrl));
    parts.tokens = std::make_unique<SecretServiceTokenStore>();
    parts.makeLocationSource = makeLocationSource;
    return parts;
}

ClockwellApp::ClockwellApp(Parts parts)
    : m_tokens(std::move(parts.tokens)),
      m_makeLocationSource(std::move(parts.makeLocationSource)),
      m_timing(parts.timing ? std::move(parts.timing) : std::make_unique<Timing>()),
      m_api(std::move(parts.client), *m_tokens, m_sessionEvents),
      m_auth(m_api, *m_tokens)
{
    // Every announcement signs out, also a repeated one: it is the assignment that counts, not the time in
    // it.
    connect(&m_sessionEvents, &SessionEvents::expiredAtChanged, this, [this] {
        if (m_sessionEvents.expiredAt())
            m_auth.logout();
    });
}

ClockwellApp::~ClockwellApp() = default;

bool ClockwellApp::show()
{
    // Asking the token store takes about as long as loading the interface, on another thread. The answer is
    // taken by the event loop, so never before the interface stands.
    m_auth.bootstrap();
    m_engine = std::make_unique<QQmlApplicationEngine>();
    m_engine->addImportPath(u"qrc:/qt/qml"_s);
    m_engine->setInitialProperties({{u"app"_s, QVariant::fromValue(this)}});
    m_engine->load(QUrl(u"qrc:/qt/qml/Clockwell/RootView.qml"_s));
    if (!window())
        return false;
    followDesktop();
    return true;
}

void ClockwellApp::followDesktop()
{
    m_preferences = std::make_unique<DesktopPreferences>(*Theme::of(*m_engine));
    // After the first frame with something to do in it, which need not wait for a D-Bus connection or an
    // icon.
    const auto start = [this] {
        if (m_auth.phase() == AuthStore::Phase::Loading || !disconnect(m_frames))
            return;
        m_preferences->start();
        QGuiApplication::setWindowIcon(QIcon(u":/clockwell/AppIcon.png"_s));
    };
    m_frames =
        connect(window(), &QQuickWindow::frameSwapped, m_preferences.get(), start, Qt::QueuedConnection);
}

QQuickWindow *ClockwellApp::window() const
{
    return m_engine ? qobject_cast<QQuickWindow *>(m_engine->rootObjects().value(0)) : nullptr;
}

AttendanceStore *ClockwellApp::newAttendanceStore(QObject *owner)
{
    return new AttendanceStore(m_api, owner);
}

LocationManager *ClockwellApp::newLocationManager(QObject *owner)
{
    return new LocationManager(m_makeLocationSource(), owner);
}

} // namespace clockwell
