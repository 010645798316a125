// The throwing convention of the library. Every failure is thrown through one
// of these two macros, so that the exception
//   - derives from boost::exception and can be cloned into an exception_ptr,
//   - carries boost::throw_function (the decorated signature of the enclosing
//     function), boost::throw_file and boost::throw_line,
//   - and, for LUMO_THROW, a lumo::diag::StackTrace under StackTraceTag.
//
// LUMO_THROW is the form of the reading and calibration code.
// LUMO_THROW_NO_TRACE is the form of the logging library and the system
// utilities, where a failing capture must not recurse.
#ifndef KORA_SYS_THROW_H_
#define KORA_SYS_THROW_H_

#include <boost/current_function.hpp>
#include <boost/exception/exception.hpp>
#include <boost/exception/info.hpp>
#include <boost/throw_exception.hpp>

#include "sys/stack_trace.h"

#define LUMO_THROW_NO_TRACE(e) BOOST_THROW_EXCEPTION(e)

// The trace is captured before the throw; if the capture itself fails, its
// own error is what leaves the throw site.
#define LUMO_THROW(e)                                 \
  BOOST_THROW_EXCEPTION(::boost::enable_error_info(e) \
                        << ::lumo::diag::StackTraceInfo(::lumo::diag::StackTrace()))

#endif  // KORA_SYS_THROW_H_
