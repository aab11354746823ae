#include "Stage.h"

#include "support/MemoryTokenStore.h"
#include "ui/Theme.h"

#include <QQmlEngine>
#include <QQuickWindow>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace clockwell::test {

namespace {

class FixedLocation final : public LocationSource
{
public:
    explicit FixedLocation(Device device) : m_device(device) {}

    AuthorizationStatus authorizationStatus() const override { return m_device.authorization; }
    void setDesiredAccuracy(Accuracy) override {}
    void requestWhenInUseAuthorization() override {}
    void requestLocation() override
    {
        if (m_device.hasFix)
            QTimer::singleShot(
                0, this,
                [this] {
                    Q_EMIT locationsUpdated({Fix{54.1234, 9.5678, 8}});
                });
    }

private:
    Device m_device;
};

} // namespace

Stage::Stage(Format format, Device device) : m_format(format), m_device(device) {}

bool Stage::start()
{
    return show(false);
}

bool Stage::startAs(const QByteArray &fullName)
{
    return startAsUser(R"({"id":"1","fullName":")" + fullName +
                       R"(","email":"e","role":"EMPLOYEE","status":"APPROVED"})");
}

bool Stage::startAsUser(const QByteArray &user)
{
    m_server.expect("GET", "/api/auth/me").anyNumber().reply(200, user);
    if (!show(true) || !m_screen->waitFor(u"Attendance"_s))
        return false;
    return m_screen->waitUntilStill();
}

void Stage::apply(Format format)
{
    auto *window = m_app->window();
    window->resize(format.size);
    const int theme = qmlTypeId("Clockwell.Ui", 1, 0, "Theme");
    qmlEngine(window)->singletonInstance<Theme *>(theme)->setTextScale(format.textScale);
}

void Stage::resize(Format format)
{
    apply(format);
    QTest::qWait(0);
    window()->grabWindow();
}

bool Stage::show(bool signedIn)
{
    auto tokens = std::make_unique<MemoryTokenStore>();
    if (signedIn)
        saveTokens(*tokens, u"a"_s, u"r"_s);
    ClockwellApp::Dependencies dependencies;
    dependencies.client.baseURL = m_server.url(u"/api"_s);
    dependencies.tokens = std::move(tokens);
    dependencies.makeLocationSource = [device = m_device] { return std::make_unique<FixedLocation>(device); };
    m_app = std::make_unique<ClockwellApp>(std::move(dependencies));
    if (!m_app->show())
        return false;
    auto *window = m_app->window();
    apply(m_format);
    m_screen = std::make_unique<ScreenDriver>(window);
    return QTest::qWaitForWindowExposed(window);
}

} // namespace clockwell::test
