// The compiled part of Asio and Beast, once for the library: their separate-compilation mode keeps the time
// that the other files take to build low.
#include <boost/asio/impl/src.hpp>
#include <boost/asio/ssl/impl/src.hpp>
#include <boost/beast/src.hpp>
