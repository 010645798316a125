// The getter and setter of one stored constant, Get<Name>() and
// Set<Name>(const Type&), written once: the interfaces declare the pair
// abstract, the families define it over a member. Each use ends with a
// semicolon, as a declaration does.
#ifndef KORA_CALIBRATION_CORE_CONSTANTS_CONSTANT_ACCESSORS_H_
#define KORA_CALIBRATION_CORE_CONSTANTS_CONSTANT_ACCESSORS_H_

#define KORA_ABSTRACT_CONSTANT(Type, Name) \
  virtual Type Get##Name() const = 0;      \
  virtual void Set##Name(const Type& value) = 0

#define KORA_CONSTANT(Type, Name, member)            \
  Type Get##Name() const override { return member; } \
  void Set##Name(const Type& value) override { member = value; }

#endif  // KORA_CALIBRATION_CORE_CONSTANTS_CONSTANT_ACCESSORS_H_
