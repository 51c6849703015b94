#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "quenra_routing.h"

static char* supplyBuffer(char* current, size_t required, const char* text, size_t requiredAgain) {
  (void)text;
  (void)requiredAgain;
  return (char*)realloc(current, required);
}

static void printDemotion(void* context, int32_t reason, zoerr_Status* status, void* notification) {
  (void)context;
  (void)status;
  (void)notification;
  printf("a route was demoted, reason %d\n", (int)reason);
}

static void listTerminals(zoroco_RoutingAdaptorSession* session, zoerr_Status* status) {
  zoroco_TerminalIterator* terminals = zoroco_ra_quenra_getAllTerminals(session, status, 0);
  for (; status->code >= 0 && !zoroco_ra_quenra_TerminalIterator_isEnd(terminals);
       zoroco_ra_quenra_TerminalIterator_next(terminals, status)) {
    const char* name = zoroco_ra_quenra_TerminalIterator_getStringAttribute(
        terminals, ZOROCO_TERMINAL_NAME, status);
    if (name != NULL) {
      printf("terminal %s\n", name);
    }
  }
  zoroco_ra_quenra_TerminalIterator_destroy(terminals);
}

/* The ticket of the first route of an answer. */
static bool findTicket(const char* routes, uint32_t* ticket) {
  static const char member[] = "\"ticket\":";
  const char* found = routes == NULL ? NULL : strstr(routes, member);
  if (found == NULL) {
    return false;
  }
  *ticket = (uint32_t)strtoul(found + strlen(member), NULL, 10);
  return true;
}

static void connect(zoroco_RoutingAdaptorSession* session, const char* from, const char* to,
                    zoerr_Status* status) {
  char seeds[256];
  char destinations[128];
  char* answer = NULL;
  uint32_t ticket = 0;
  snprintf(seeds, sizeof seeds, "[{\"terminal\":\"%s\",\"cost\":0,\"constraints\":{}}]", from);
  snprintf(destinations, sizeof destinations, "[\"%s\"]", to);
  zoroco_ra_quenra_calculateRoute(session, seeds, destinations, "{}", &answer, status);
  if (status->code >= 0 && !findTicket(answer, &ticket)) {
    printf("no such route\n");
  } else if (status->code >= 0) {
    zoroco_ra_quenra_reserveRoute(session, ticket, &answer, status);
    if (status->code == QUENRA_STATUS_ROUTE_CONFLICT) {
      printf("conflict: %s\n", answer);
    }
    zoroco_ra_quenra_programRoute(session, ticket, status);
    zoroco_ra_quenra_getRouteTerminalPath(session, ticket, &answer, status);
    if (status->code >= 0) {
      printf("connected: %s\n", answer);
      getchar();
    }
    zoroco_ra_quenra_unprogramRoute(session, ticket, 0, 0);
    zoroco_ra_quenra_unreserveRoute(session, ticket, 0, 0);
    zoroco_ra_quenra_destroyRoute(session, ticket, 0, 0);
  }
  free(answer);
}

int main(int argc, char** argv) {
  if (argc != 4) {
    printf("usage: routing DEVICE FROM TO\n");
    return EXIT_FAILURE;
  }
  zoerr_Status status = zoerr_Status_initial();
  zoroco_RoutingAdaptorSession* session = zoroco_ra_quenra_createSessionWithDemotionFunc(
      argv[1], supplyBuffer, printDemotion, NULL, &status);
  if (session != NULL) {
    listTerminals(session, &status);
    connect(session, argv[2], argv[3], &status);
    zoroco_ra_quenra_destroySession(session);
  }
  if (status.code < 0) {
    printf("failed: %d %s\n", (int)status.code,
           status.description == NULL ? "" : status.description);
  }
  const int result = status.code < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
  zoerr_Status_release(&status);
  return result;
}
