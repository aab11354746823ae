#include "ClockwellApp.h"

#include "ConfiguredBaseUrl.h"
#include "attendance/LocationSource.h"
#include "net/SecretServiceTokenStore.h"
#include "ui/DesktopPreferences.h"
#include "ui/Theme.h"

#include <QGuiApplication>
#include <QIcon>
#include <QQuickWindow>

using namespace Qt::StringLiterals;

namespace clockwell {

ClockwellApp::Dependencies ClockwellApp::platformDependencies()
{
    Dependencies dependencies;
    dependencies.client.baseURL = QUrl(QString::fromLatin1(configuredBaseUrl));
    dependencies.tokens = std::make_unique<SecretServiceTokenStore>();
    dependencies.makeLocationSource = makeLocationSource;
    return dependencies;
}

ClockwellApp::ClockwellApp(Dependencies dependencies)
    : m_tokens(std::move(dependencies.tokens)),
      m_makeLocationSource(std::move(dependencies.makeLocationSource)),
      m_timing(dependencies.timing ? std::move(dependencies.timing) : std::make_unique<Timing>()),
      m_api(std::move(dependencies.client), *m_tokens, m_sessionEvents),
      m_auth(m_api, *m_tokens)
{
    // Every assignment signs out, also of an equal time.
    connect(&m_sessionEvents, &SessionEvents::expiredAtChanged, this, [this] {
        if (m_sessionEvents.expiredAt())
            m_auth.logout();
    });
}

ClockwellApp::~ClockwellApp() = default;

bool ClockwellApp::show()
{
    // Started first, because reading the token store, on another thread, takes about as long as loading the
    // interface. The event loop handles the result, so always after the interface has been loaded.
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
    // After the first frame of a usable screen, so that it does not wait for a D-Bus connection and an icon.
    const auto start = [this] {
        if (m_auth.phase() == AuthStore::Phase::Loading || !disconnect(m_frames))
            return;
        m_preferences->start();
        QGuiApplication::setWindowIcon(QIcon(u":/clockwell/AppLogo.svg"_s));
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
