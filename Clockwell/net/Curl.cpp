#include "net/Curl.h"

#include <QLibrary>

namespace clockwell {

namespace {

template <class Function>
void look(QLibrary &library, const char *name, Function &function)
{
    function = reinterpret_cast<Function>(library.resolve(name));
    if (!function)
        qFatal("libcurl cannot be loaded: %s", qPrintable(library.errorString()));
}

} // namespace

const Curl &Curl::get()
{
    static const Curl loaded;
    return loaded;
}

Curl::Curl()
{
    // Stays loaded until the process ends: a thread of it may still be resolving a host name then.
    QLibrary library(QStringLiteral("curl"), 4);
    look(library, "curl_easy_init", easyInit);
    look(library, "curl_easy_setopt", easySetopt);
    look(library, "curl_easy_getinfo", easyGetinfo);
    look(library, "curl_easy_cleanup", easyCleanup);
    look(library, "curl_slist_append", slistAppend);
    look(library, "curl_slist_free_all", slistFreeAll);
    look(library, "curl_multi_init", multiInit);
    look(library, "curl_multi_setopt", multiSetopt);
    look(library, "curl_multi_add_handle", multiAddHandle);
    look(library, "curl_multi_remove_handle", multiRemoveHandle);
    look(library, "curl_multi_socket_action", multiSocketAction);
    look(library, "curl_multi_info_read", multiInfoRead);
    look(library, "curl_multi_cleanup", multiCleanup);
    decltype(&::curl_global_init) globalInit = nullptr;
    look(library, "curl_global_init", globalInit);
    globalInit(CURL_GLOBAL_DEFAULT);
}

} // namespace clockwell
