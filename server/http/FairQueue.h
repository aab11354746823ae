#pragma once

#include <algorithm>
#include <cstddef>
#include <list>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace clockwell::server {

/// Work that waits, in groups: one piece of each group is taken in turn, within a group the oldest first. So
/// however much one group brings, another one waits for no more than a round of turns for each piece of its
/// own. Not thread-safe.
template <class Work>
class FairQueue
{
public:
    /// `account` is counted too, see waitingFor(); empty: nobody's.
    void push(const std::string &group, const std::string &account, Work work)
    {
        const auto [entry, isNew] = m_groups.try_emplace(group);
        if (isNew)
            m_turns.push_back(&*entry);
        entry->second.push_back({account, std::move(work)});
        if (!account.empty())
            ++m_accounts[account];
        ++m_size;
    }

    std::optional<Work> pop()
    {
        if (m_turns.empty())
            return std::nullopt;
        Group &group = *m_turns.front();
        Piece piece = std::move(group.second.front());
        group.second.pop_front();
        if (group.second.empty()) {
            m_turns.pop_front();
            m_groups.erase(m_groups.find(group.first));
        } else {
            m_turns.splice(m_turns.end(), m_turns, m_turns.begin());
        }
        uncount(piece.account);
        --m_size;
        return std::move(piece.work);
    }

    std::size_t size() const { return m_size; }
    std::size_t waitingOf(const std::string &group) const
    {
        const auto found = m_groups.find(group);
        return found == m_groups.end() ? 0 : found->second.size();
    }
    std::size_t waitingFor(const std::string &account) const
    {
        const auto found = m_accounts.find(account);
        return found == m_accounts.end() ? 0 : found->second;
    }

    /// At most so many pieces are taken before one that the group pushes now, if no other group pushes more.
    std::size_t aheadOf(const std::string &group) const
    {
        const std::size_t own = waitingOf(group);
        std::size_t ahead = own;
        for (const Group *other : m_turns)
            ahead += other->first == group ? 0 : std::min(other->second.size(), own + 1);
        return ahead;
    }

private:
    struct Piece
    {
        std::string account;
        Work work;
    };
    using Group = std::pair<const std::string, std::list<Piece>>;

    void uncount(const std::string &account)
    {
        const auto found = m_accounts.find(account);
        if (found != m_accounts.end() && --found->second == 0)
            m_accounts.erase(found);
    }

    std::unordered_map<std::string, std::list<Piece>> m_groups; // those with work, and only those
    std::list<Group *> m_turns;                                 // all of them, the next one first
    std::unordered_map<std::string, std::size_t> m_accounts;    // pieces that wait for each
    std::size_t m_size = 0;
};

} // namespace clockwell::server
