# Tokens and coordinates are sent to this URL, so configuration fails for URLs without TLS, except for loopback hosts:
# 127.0.0.0/8, [::1] and localhost.
function(clockwell_check_base_url url)
    set(octet "(25[0-5]|2[0-4][0-9]|1[0-9][0-9]|[1-9]?[0-9])")
    set(loopback "(localhost|127\\.${octet}\\.${octet}\\.${octet}|\\[::1\\])")
    set(port "(:[0-9]+)?")
    if(url MATCHES "^http://${loopback}${port}/api$")
        return()
    endif()
    if(url MATCHES "^https://[A-Za-z0-9.-]+${port}/api$" OR url MATCHES "^https://\\[[0-9A-Fa-f:.]+\\]${port}/api$")
        return()
    endif()
    message(FATAL_ERROR
        "CLOCKWELL_BASE_URL is \"${url}\". It must be https://HOST[:PORT]/api; plain http is accepted for a "
        "loopback host only (http://127.0.0.1:PORT/api).")
endfunction()
