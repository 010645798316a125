// ICloneable: the root of every calibration object that is copied through an
// interface pointer (constants, measurement mode infos, transformators).
//
// Clone() returns a deep copy: the copy shares no mutable state with its
// source, so changing one never changes the other.
#ifndef KORA_CALIBRATION_CORE_CLONEABLE_H_
#define KORA_CALIBRATION_CORE_CLONEABLE_H_

#include <boost/make_shared.hpp>
#include <boost/pointer_cast.hpp>
#include <boost/shared_ptr.hpp>
#include <stdexcept>

#include "sys/throw.h"

namespace lumo {
namespace calibration {

class ICloneable;
typedef boost::shared_ptr<ICloneable> ICloneablePtr;

class ICloneable {
 public:
  // A new, independent copy of the concrete object.
  virtual ICloneablePtr Clone() const = 0;
  virtual ~ICloneable() {}
};

namespace detail {

// Clone written once: Derived, the concrete class, derives from
// ClonedAs<Derived, Interface> and its Clone is a copy of the whole Derived.
template <class Derived, class Interface>
class ClonedAs : public virtual Interface {
 public:
  ICloneablePtr Clone() const override {
    return boost::make_shared<Derived>(static_cast<const Derived&>(*this));
  }
};

}  // namespace detail

// The text of the failure of cloneAs.
extern const char* const kCloneErrorText;

// A deep copy of `object` as a T. Empty for an empty `object`.
// Throws std::runtime_error (kCloneErrorText) when the copy is not a T,
// which is a fault in the concrete class's Clone().
template <class T>
boost::shared_ptr<T> cloneAs(const boost::shared_ptr<T>& object) {
  if (!object) return boost::shared_ptr<T>();
  boost::shared_ptr<T> copy = boost::dynamic_pointer_cast<T>(object->Clone());
  if (!copy) LUMO_THROW(std::runtime_error(kCloneErrorText));
  return copy;
}

template <class T>
boost::shared_ptr<T> cloneAs(const boost::shared_ptr<const T>& object) {
  if (!object) return boost::shared_ptr<T>();
  boost::shared_ptr<T> copy = boost::dynamic_pointer_cast<T>(object->Clone());
  if (!copy) LUMO_THROW(std::runtime_error(kCloneErrorText));
  return copy;
}

}  // namespace calibration
}  // namespace lumo

#endif  // KORA_CALIBRATION_CORE_CLONEABLE_H_
