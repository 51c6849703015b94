// Programs that the header rejects: Clang compares its errors with the comments (-verify).
#include "quenra.hpp"

// expected-error@quenra.hpp:* {{the attribute is write-only}}
// expected-error@quenra.hpp:* 2 {{the attribute is read-only}}

// clang-format off
void rejected(quenra::controller& controller, quenra::routing::session& session, std::error_code& code) {
  // An attribute is read and written as drivers permit.
  static_cast<void>(controller.get(quenra::text_setting_of_both, code));  // expected-note {{instantiation}}
  controller.set(quenra::product_name, "text", code);  // expected-note {{instantiation}}
  controller.set(quenra::slot_count, 5, code);         // expected-note {{instantiation}}
  controller.set(quenra::driver_setting_1, "text");    // expected-error {{no matching member function}}
  controller.set(quenra::text_setting_of_both, 5);     // expected-error {{no matching member function}}

  // An attribute of several instances needs one.
  controller.get(quenra::memory_size);        // expected-error {{call to deleted member function}}
  controller.get(quenra::memory_size, code);  // expected-error {{call to deleted member function}}

  // Quantities of different units do not mix.
  static_cast<void>(controller.get(quenra::memory_speed[0]) < controller.get(quenra::processor_maximum_speed[0]));  // expected-error {{invalid operands}}
  const std::uint32_t speed = controller.get(quenra::memory_speed[0]);  // expected-error {{no viable conversion}}

  // An image is no text, and the options are no number.
  const quenra::image_view image("a.fwi");           // expected-error {{no matching constructor}}
  controller.update_firmware(quenra::image_view(), 1);  // expected-error {{no matching member function}}

  // Controllers, sessions and routes have one owner.
  quenra::controller second = controller;             // expected-error {{call to deleted constructor}}
  quenra::routing::session another = session;         // expected-error {{call to deleted constructor}}
  quenra::controller converted = code;                // expected-error {{no viable conversion}}

  // A result must not be dropped.
  session.connect("TRIG_SMB", "PXI_Trig0");  // expected-error {{ignoring return value}}
  controller.get(quenra::slot_count);        // expected-error {{ignoring return value}}
  quenra::controller::open();                // expected-error {{ignoring return value}}
}
// clang-format on
