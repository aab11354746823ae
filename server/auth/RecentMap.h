#pragma once

#include <concepts>
#include <cstddef>
#include <list>
#include <string>
#include <unordered_map>
#include <utility>

namespace clockwell::server {

/// A value for each key, of which a bounded number is kept: the one that was not written for longest gives
/// way. Not thread-safe.
template <class Value>
class RecentMap
{
public:
    explicit RecentMap(std::size_t most) : m_most(most) {}

    /// The key's value, to be written; a new one when there is none.
    Value &write(const std::string &key)
    {
        const auto known = m_entries.find(key);
        if (known != m_entries.end()) {
            m_order.splice(m_order.end(), m_order, known->second.second);
            return known->second.first;
        }
        if (m_entries.size() >= m_most) {
            m_entries.erase(m_order.front());
            m_order.pop_front();
        }
        m_order.push_back(key);
        return m_entries.emplace(key, std::pair{Value{}, std::prev(m_order.end())}).first->second.first;
    }

    /// Null when there is none.
    const Value *find(const std::string &key) const
    {
        const auto known = m_entries.find(key);
        return known == m_entries.end() ? nullptr : &known->second.first;
    }

    /// Removes the keys that `matches` accepts; goes through all of them.
    template <std::predicate<const std::string &> Matches>
    void eraseIf(Matches matches)
    {
        m_order.remove_if([&](const std::string &key) { return matches(key) && m_entries.erase(key) == 1; });
    }
    void erase(const std::string &key)
    {
        const auto known = m_entries.find(key);
        if (known == m_entries.end())
            return;
        m_order.erase(known->second.second);
        m_entries.erase(known);
    }

private:
    std::size_t m_most;
    std::list<std::string> m_order; // keys, the one that was not written for longest first
    std::unordered_map<std::string, std::pair<Value, std::list<std::string>::iterator>> m_entries;
};

} // namespace clockwell::server
