#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <optional>

namespace clockwell {

/// Base of the account forms: whether a request is running, and the outcome of the last one. Main thread
/// only.
class FormViewModel : public QObject
{
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool failed READ failed NOTIFY errorChanged)
    Q_PROPERTY(QString error READ error NOTIFY errorChanged)
    Q_PROPERTY(bool informed READ informed NOTIFY infoChanged)
    Q_PROPERTY(QString info READ info NOTIFY infoChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool incomplete READ incomplete NOTIFY incompleteChanged)

public:
    /// Whether `error` has a value; the value may be an empty text from the server.
    bool failed() const { return m_error.has_value(); }
    QString error() const { return m_error.value_or(QString()); }
    /// Whether `info` has a value.
    bool informed() const { return m_info.has_value(); }
    QString info() const { return m_info.value_or(QString()); }
    bool loading() const { return m_loading; }
    /// A required field is empty. Blanks count as text: the server decides whether they are valid.
    virtual bool incomplete() const = 0;

Q_SIGNALS:
    void errorChanged();
    void infoChanged();
    void loadingChanged();
    void incompleteChanged();

protected:
    explicit FormViewModel(QObject *parent) : QObject(parent) {}

    /// Sets a field of `Form` and emits its change signal if the text has changed.
    template <class Form>
    void edit(QString &field, const QString &text, void (Form::*changed)())
    {
        if (text == field)
            return;
        const bool wasIncomplete = incomplete();
        field = text;
        Q_EMIT(static_cast<Form *>(this)->*changed)();
        if (incomplete() != wasIncomplete)
            Q_EMIT incompleteChanged();
    }

    void setError(std::optional<QString> error);
    void setInfo(std::optional<QString> info);
    void setLoading(bool loading);

private:
    std::optional<QString> m_error;
    std::optional<QString> m_info;
    bool m_loading = false;
};

} // namespace clockwell
