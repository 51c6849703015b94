#ifndef TOOLS_QUENRA_ROUTING_IROUTING_H
#define TOOLS_QUENRA_ROUTING_IROUTING_H

#include "quenra_routing.h"

namespace nCommandLine {

// The functions of quenra_routing.h that the command line calls; that header is their contract.
class iRouting {
 public:
  using tSession = zoroco_RoutingAdaptorSession;
  using tIterator = zoroco_TerminalIterator;

  iRouting() = default;
  iRouting(const iRouting&) = delete;
  iRouting& operator=(const iRouting&) = delete;
  virtual ~iRouting() = default;

  virtual tSession* createSession(const char* device, zoroco_Reallocate reallocate,
                                  zoroco_DemotionCallback callback, void* context,
                                  zoerr_Status* status) noexcept = 0;
  virtual void destroySession(tSession* session) noexcept = 0;

  virtual void calculateRoute(tSession* session, const char* seeds, const char* destinations,
                              const char* modifiers, char** output,
                              zoerr_Status* status) noexcept = 0;
  virtual void reserveRoute(tSession* session, uint32_t ticket, char** output,
                            zoerr_Status* status) noexcept = 0;
  virtual void programRoute(tSession* session, uint32_t ticket, zoerr_Status* status) noexcept = 0;
  virtual void unprogramRoute(tSession* session, uint32_t ticket) noexcept = 0;
  virtual void unreserveRoute(tSession* session, uint32_t ticket) noexcept = 0;
  virtual void destroyRoute(tSession* session, uint32_t ticket) noexcept = 0;
  virtual void beginExceptionalRouteDestruction(tSession* session, uint32_t ticket) noexcept = 0;
  virtual void getRouteTerminalPath(tSession* session, uint32_t ticket, char** output,
                                    zoerr_Status* status) noexcept = 0;

  virtual tIterator* getAllTerminals(tSession* session, zoerr_Status* status) noexcept = 0;
  virtual void next(tIterator* iterator, zoerr_Status* status) noexcept = 0;
  virtual bool isEnd(tIterator* iterator) noexcept = 0;
  virtual const char* getStringAttribute(tIterator* iterator, const char* name,
                                         zoerr_Status* status) noexcept = 0;
  virtual bool getBoolAttribute(tIterator* iterator, const char* name,
                                zoerr_Status* status) noexcept = 0;
  virtual uint32_t getU32Attribute(tIterator* iterator, const char* name,
                                   zoerr_Status* status) noexcept = 0;
  virtual void destroyIterator(tIterator* iterator) noexcept = 0;
};

}  // namespace nCommandLine

#endif
