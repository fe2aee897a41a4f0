#include "corvane_mcp/server/ProgressReporter.h"

#include "CorvaneCore/json/JsonErrors.h"
#include "CorvaneCore/json/JsonWriter.h"

namespace corvane {

void ProgressReporter::emit(double progress, std::optional<double> total,
                            std::string_view message) const {
  AnyCodable::Object params{{"progressToken", token}, {"progress", progress}, {"message", message}};
  if (total) params.set("total", *total);
  const AnyCodable notification(AnyCodable::Object{
      {"jsonrpc", "2.0"}, {"method", "notifications/progress"}, {"params", std::move(params)}});
  try {
    // Unlike replies, these have always gone out with escaped slashes.
    writer->send(toJson(notification, SlashStyle::escaped));
  } catch (const EncodeError&) {
    // Progress that has no JSON form is dropped; the call goes on.
  }
}

}  // namespace corvane
