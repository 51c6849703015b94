#include "simulator/model/counters.h"

void countersOf(const tModel* model, tSimulatorCounters* counters) {
  const tNotificationCounts* told = &model->notifications.counts;
  const tRouteCounts* routes = &model->router.counts;
  *counters = (tSimulatorCounters){.filesOpened = model->filesOpened,
                                   .filesClosed = model->filesClosed,
                                   .registrationsBegun = told->registered,
                                   .registrationsEnded = told->unregistered,
                                   .deliveriesArmed = told->armed,
                                   .deliveriesEnded = told->disarmed,
                                   .noticesRaised = told->raised,
                                   .noticesDelivered = told->delivered,
                                   .noticesDropped = told->dropped,
                                   .pendingBegun = model->pending.begun,
                                   .pendingEnded = model->pending.ended,
                                   .routesCalculated = routes->calculated,
                                   .routesGone = routes->gone,
                                   .reservationsBegun = routes->reserved,
                                   .reservationsEnded = routes->unreserved,
                                   .reservationsDemoted = routes->demoted,
                                   .reservationsReleased = routes->released,
                                   .programmingsBegun = routes->programmed,
                                   .programmingsEnded = routes->unprogrammed};
}
