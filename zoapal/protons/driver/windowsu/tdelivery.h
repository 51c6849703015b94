#ifndef ZOAPAL_PROTONS_DRIVER_WINDOWSU_TDELIVERY_H
#define ZOAPAL_PROTONS_DRIVER_WINDOWSU_TDELIVERY_H

#include <windows.h>

#include "protocol/notificationrequests.h"

namespace nQUENRA1400::nZOAPAL000 {

class tDeviceInterfaceProxy;

// The request by which the driver delivers a device's notices, and where it puts them. Its address is
// the completion key of the device, so that whoever reads the port finds it: a completion whose
// OVERLAPPED is the key is a delivery.
struct tDelivery {
  OVERLAPPED notificationKey{};
  tNotificationDelivery rearmBuffer{};
  tDeviceInterfaceProxy* proxy;
};

}  // namespace nQUENRA1400::nZOAPAL000

#endif
