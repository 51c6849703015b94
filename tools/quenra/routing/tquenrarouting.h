#ifndef TOOLS_QUENRA_ROUTING_TQUENRAROUTING_H
#define TOOLS_QUENRA_ROUTING_TQUENRAROUTING_H

#include "tools/quenra/routing/irouting.h"

namespace nCommandLine {

// Calls quenra.dll.
class tQuenraRouting final : public iRouting {
 public:
  tSession* createSession(const char* device, zoroco_Reallocate reallocate,
                          zoroco_DemotionCallback callback, void* context,
                          zoerr_Status* status) noexcept override;
  void destroySession(tSession* session) noexcept override;
  void calculateRoute(tSession* session, const char* seeds, const char* destinations,
                      const char* modifiers, char** output, zoerr_Status* status) noexcept override;
  void reserveRoute(tSession* session, uint32_t ticket, char** output,
                    zoerr_Status* status) noexcept override;
  void programRoute(tSession* session, uint32_t ticket, zoerr_Status* status) noexcept override;
  void unprogramRoute(tSession* session, uint32_t ticket) noexcept override;
  void unreserveRoute(tSession* session, uint32_t ticket) noexcept override;
  void destroyRoute(tSession* session, uint32_t ticket) noexcept override;
  void beginExceptionalRouteDestruction(tSession* session, uint32_t ticket) noexcept override;
  void getRouteTerminalPath(tSession* session, uint32_t ticket, char** output,
                            zoerr_Status* status) noexcept override;
  tIterator* getAllTerminals(tSession* session, zoerr_Status* status) noexcept override;
  void next(tIterator* iterator, zoerr_Status* status) noexcept override;
  bool isEnd(tIterator* iterator) noexcept override;
  const char* getStringAttribute(tIterator* iterator, const char* name,
                                 zoerr_Status* status) noexcept override;
  bool getBoolAttribute(tIterator* iterator, const char* name,
                        zoerr_Status* status) noexcept override;
  uint32_t getU32Attribute(tIterator* iterator, const char* name,
                           zoerr_Status* status) noexcept override;
  void destroyIterator(tIterator* iterator) noexcept override;
};

}  // namespace nCommandLine

#endif
