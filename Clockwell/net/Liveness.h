#pragma once

#include <QCoro/QCoroTask>
#include <QObject>
#include <QPointer>

#include <utility>

namespace clockwell {

/// Thrown into a coroutine whose object died while it waited. Deliberately no std::exception: the handlers
/// that turn failures into texts on the object (`catch (const std::exception &)`) must not run, only
/// destructors must.
struct Abandoned
{};

/// Awaits `task` on behalf of `owner` and hands on its result or error, or throws Abandoned if `owner` has
/// died meanwhile. Call it on the owner's thread. The usual form in a screen: `co_await whileAlive(this,
/// store->load())`.
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

/// Holds a flag of `owner` up for as long as a scope runs, on every way out of it, so that no error leaves a
/// spinner on. Leaves an owner alone that has died meanwhile. `setter` is a member function taking bool.
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

/// The setter may be one that the owner's class inherited.
template <class Derived, class Owner>
BusyFlag(Derived *, void (Owner::*)(bool)) -> BusyFlag<Owner>;

} // namespace clockwell
