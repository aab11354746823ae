// The compiled part of Boost.URL, once for the library.
#include <boost/url/src.hpp>
