#pragma once

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>

#include <utility>

namespace clockwell {

/// Thrown into a coroutine whose owner was destroyed while it waited. Deliberately not a std::exception: the
/// handlers that show errors on the owner (`catch (const std::exception &)`) must not run, only destructors.
struct Abandoned
{};

/// Awaits `task` on behalf of `owner` and returns its result or throws its error; throws Abandoned if `owner`
/// was destroyed meanwhile. Call it on the owner's thread. Typical use in a screen: `co_await
/// whileAlive(this, store->load())`.
template <class T>
QCoro::Task<T> whileAlive(QPointer<const QObject> owner, QCoro::Task<T> task)
{
    try {
        if constexpr (std::is_void_v<T>) {
            co_await task;
            if (owner)
                co_return;
        } else {
            T result = co_await task;
            if (owner)
                co_return std::move(result);
        }
    } catch (...) {
        if (owner)
            throw;
    }
    throw Abandoned{};
}

template <class T>
QCoro::Task<T> whileAlive(const QObject *owner, QCoro::Task<T> task)
{
    return whileAlive(QPointer<const QObject>(owner), std::move(task));
}

/// Sets a flag of `owner` for the duration of a scope and clears it on every exit, so that no error leaves a
/// spinner on. Does nothing if the owner was destroyed meanwhile. `setter` is a member function taking bool.
template <class Owner>
class BusyFlag
{
public:
    using Setter = void (Owner::*)(bool);
    BusyFlag(Owner *owner, Setter setter) : m_owner(owner), m_setter(setter) { (owner->*setter)(true); }
    BusyFlag(const BusyFlag &) = delete;
    BusyFlag &operator=(const BusyFlag &) = delete;
    ~BusyFlag()
    {
        if (m_owner)
            (m_owner.data()->*m_setter)(false);
    }

private:
    QPointer<Owner> m_owner;
    Setter m_setter;
};

/// The setter may be inherited from a base class of the owner.
template <class Derived, class Owner>
BusyFlag(Derived *, void (Owner::*)(bool)) -> BusyFlag<Owner>;

} // namespace clockwell
