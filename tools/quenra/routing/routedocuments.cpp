#include "tools/quenra/routing/troutingsession.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

namespace nCommandLine {
namespace {

constexpr const char* kInversion = "inversionNeeded";

using tWriter = rapidjson::Writer<rapidjson::StringBuffer>;

template <class Write>
std::string written(Write write) {
  rapidjson::StringBuffer buffer;
  tWriter writer(buffer);
  write(writer);
  return buffer.GetString();
}

void writeText(tWriter& writer, const std::string& text) {
  writer.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

// Parses a JSON array; returns an empty array for any other text.
rapidjson::Document arrayIn(std::string_view answer) {
  rapidjson::Document document;
  document.Parse(answer.data(), answer.size());
  if (document.HasParseError() || !document.IsArray()) {
    document.SetArray();
  }
  return document;
}

bool hasNumber(const rapidjson::Value& value, const char* name) {
  return value.IsObject() && value.HasMember(name) && value[name].IsUint();
}

bool inverts(const rapidjson::Value& route) {
  return route.HasMember("constraints") && route["constraints"].IsObject() &&
         route["constraints"].HasMember(kInversion) && route["constraints"][kInversion].IsTrue();
}

}  // namespace

std::string seedsText(const tRouteRequest& request) {
  return written([&request](tWriter& writer) {
    writer.StartArray();
    writer.StartObject();
    writer.Key("terminal");
    writeText(writer, request.from);
    writer.Key("cost");
    writer.Uint(0);
    writer.Key("constraints");
    writer.StartObject();
    writer.EndObject();
    writer.EndObject();
    writer.EndArray();
  });
}

std::string destinationsText(const tRouteRequest& request) {
  return written([&request](tWriter& writer) {
    writer.StartArray();
    writeText(writer, request.to);
    writer.EndArray();
  });
}

std::string modifiersText(const tRouteRequest& request) {
  return written([&request](tWriter& writer) {
    writer.StartObject();
    writer.Key("required");
    writer.StartObject();
    if (request.inverted) {
      writer.Key(kInversion);
      writer.Bool(true);
    }
    if (request.ignoresReservations) {
      writer.Key("calculateIgnoresReservations");
      writer.Bool(true);
    }
    writer.EndObject();
    writer.EndObject();
  });
}

std::vector<tRoute> routesIn(std::string_view answer) {
  std::vector<tRoute> routes;
  const rapidjson::Document array = arrayIn(answer);
  for (const rapidjson::Value& route : array.GetArray()) {
    if (hasNumber(route, "ticket") && hasNumber(route, "cost")) {
      routes.push_back({route["ticket"].GetUint(), route["cost"].GetUint(), inverts(route)});
    }
  }
  return routes;
}

std::vector<std::string> terminalsIn(std::string_view answer) {
  std::vector<std::string> names;
  const rapidjson::Document array = arrayIn(answer);
  for (const rapidjson::Value& name : array.GetArray()) {
    if (name.IsString()) {
      names.emplace_back(name.GetString(), name.GetStringLength());
    }
  }
  return names;
}

std::vector<tRouteHolder> holdersIn(std::string_view answer) {
  std::vector<tRouteHolder> holders;
  const rapidjson::Document array = arrayIn(answer);
  for (const rapidjson::Value& holder : array.GetArray()) {
    if (hasNumber(holder, "ticket") && holder.HasMember("sessionId") &&
        holder["sessionId"].IsUint64()) {
      holders.push_back({holder["sessionId"].GetUint64(), holder["ticket"].GetUint()});
    }
  }
  return holders;
}

std::string unknownRouterIn(std::string_view description) {
  constexpr const char* kMember = "zoark_debug";
  constexpr std::string_view kBeginning = "Topography not found: ";
  rapidjson::Document document;
  document.Parse(description.data(), description.size());
  if (document.HasParseError() || !document.IsObject() || !document.HasMember(kMember) ||
      !document[kMember].IsString()) {
    return "";
  }
  const std::string message(document[kMember].GetString(), document[kMember].GetStringLength());
  return message.starts_with(kBeginning) ? message.substr(kBeginning.size()) : "";
}

}  // namespace nCommandLine
