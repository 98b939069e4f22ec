// What every accessor does with its handle: a null one has no effect and gives zero, any other is
// followed. Results that differ from that are told where they occur.
#pragma once

namespace pgkit {

// The value of a field. The handle may be that of a base class of the field's owner: that the
// object is of the owner's class is the host's promise.
template <typename Handle, typename Object, typename Value>
Value FieldOf(Handle* handle, Value Object::*field) {
    return handle == nullptr ? Value{} : static_cast<Object*>(handle)->*field;
}

template <typename Object, typename Value>
void SetField(Object* object, Value Object::*field, Value value) {
    if (object != nullptr) object->*field = value;
}

// The result of a member that has no overloads.
template <typename Object, typename Result, typename... Parameters>
Result CallOn(Object* object, Result (Object::*member)(Parameters...), Parameters... arguments) {
    return object == nullptr ? Result() : (object->*member)(arguments...);
}

}  // namespace pgkit
