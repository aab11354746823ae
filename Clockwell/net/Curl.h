#pragma once

#include <curl/curl.h>

namespace clockwell {

/// libcurl's functions, looked up when they are first used. Linking it would load its two dozen libraries
/// before the app's window shows, 8 ms of processor time, to no use: only the client's thread needs them, and
/// only with the first request.
class Curl
{
public:
    /// Loads and initialises libcurl with the first call. Ends the process when it is not installed.
    static const Curl &get();

    decltype(&::curl_easy_init) easyInit;
    decltype(&::curl_easy_setopt) easySetopt;
    decltype(&::curl_easy_getinfo) easyGetinfo;
    decltype(&::curl_easy_cleanup) easyCleanup;
    decltype(&::curl_slist_append) slistAppend;
    decltype(&::curl_slist_free_all) slistFreeAll;
    decltype(&::curl_multi_init) multiInit;
    decltype(&::curl_multi_setopt) multiSetopt;
    decltype(&::curl_multi_add_handle) multiAddHandle;
    decltype(&::curl_multi_remove_handle) multiRemoveHandle;
    decltype(&::curl_multi_socket_action) multiSocketAction;
    decltype(&::curl_multi_info_read) multiInfoRead;
    decltype(&::curl_multi_cleanup) multiCleanup;

private:
    Curl();
};

} // namespace clockwell
