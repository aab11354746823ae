#include "FormViewModel.h"

#include <utility>

namespace clockwell {

void FormViewModel::setError(std::optional<QString> error)
{
    if (error == m_error)
        return;
    m_error = std::move(error);
    Q_EMIT errorChanged();
}

void FormViewModel::setInfo(std::optional<QString> info)
{
    if (info == m_info)
        return;
    m_info = std::move(info);
    Q_EMIT infoChanged();
}

void FormViewModel::setLoading(bool loading)
{
    if (loading != std::exchange(m_loading, loading))
        Q_EMIT loadingChanged();
}

} // namespace clockwell
