#include "cli/ShowStatistics.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <array>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/Table.h"
#include "cli/Times.h"

namespace LldpCli {
namespace {

struct Options {
   std::optional<std::string> port;
   bool json = false;
};

// A counter: of the agent's entity, of the JSON for scripts, in words, at the head of a column.
struct Counter {
   const char* attribute;
   const char* name;
   const char* words;
   const char* title;
};

constexpr auto portCounters = std::to_array<Counter>({
    {"txFramesTotal", "framesSent", "Frames sent", "Sent"},
    {"txFramesLengthExceeded", "framesShortOfRoom", "Frames sent without a TLV for lack of room",
     "Short"},
    {"txFramesNoMemErrors", "framesNotSent", "Frames not sent for lack of a buffer", "Unsent"},
    {"rxFramesTotal", "framesReceived", "Frames received", "Recv"},
    {"rxFramesDiscardedTotal", "framesDiscarded", "Frames discarded", "Disc"},
    {"rxFramesErrors", "framesWithErrors", "Frames with errors", "Err"},
    {"rxTLVsDiscardedTotal", "tlvsDiscarded", "TLVs discarded", "TLV disc"},
    {"rxTLVsUnrecognizedTotal", "tlvsUnrecognized", "TLVs not recognized", "TLV unk"},
    {"rxAgeoutsTotal", "neighborsAgedOut", "Neighbors aged out", "Aged"},
});

constexpr auto tableCounters = std::to_array<Counter>({
    {"remTablesInserts", "inserts", "Neighbors added", ""},
    {"remTablesDeletes", "deletes", "Neighbors removed", ""},
    {"remTablesDrops", "drops", "Neighbors refused for lack of room", ""},
    {"remTablesAgeouts", "ageouts", "Neighbors aged out", ""},
});

// The latest that the CEE peer has sent, which is acknowledged; the agent has 0 for none.
constexpr const char* ceeNumber = "ceeSequenceNumber";

template <size_t n>
void putCounters(Json& view, const std::array<Counter, n>& counters, const Json& entity) {
   for (const Counter& counter : counters) {
      view[counter.name] = entity.at(counter.attribute).template get<unsigned long long>();
   }
}

std::string count(const Json& view, const Counter& counter) {
   return std::to_string(view.at(counter.name).get<unsigned long long>());
}

template <size_t n>
Fields counterFields(const Json& view, const std::array<Counter, n>& counters) {
   Fields fields;
   for (const Counter& counter : counters) fields.emplace_back(counter.words, count(view, counter));
   return fields;
}

void addAge(Fields& fields, const char* label, const Json& view, const char* name) {
   bool happened = view.contains(name);
   fields.emplace_back(label, happened ? duration(view.at(name).get<double>()) + " ago" : "never");
}

Json statisticsView(const Json& status, const Ports& ports, double now) {
   Json table = Json::object();
   putCounters(table, tableCounters, status);
   putSince(table, "sinceChangeSeconds", status.at("remTablesLastChangeTime"), now);
   Json list = Json::array();
   for (const auto& [port, portStatus] : ports) {
      Json view{{"port", Rex::printable(port)},
                {"neighbors", portStatus.at("remoteSystem").size()}};
      putCounters(view, portCounters, portStatus);
      putSince(view, "sinceSentSeconds", portStatus.at("lastTxTime"), now);
      if (const Json& cee = portStatus.at("ceeSeqNumToAck"); cee != 0u) view[ceeNumber] = cee;
      list.push_back(std::move(view));
   }
   return {{"table", table}, {"ports", list}};
}

void printPort(std::ostream& out, const Json& port) {
   Fields fields{{"Neighbors", std::to_string(port.at("neighbors").get<size_t>())}};
   Fields counters = counterFields(port, portCounters);
   fields.insert(fields.end(), counters.begin(), counters.end());
   addAge(fields, "Last frame sent", port, "sinceSentSeconds");
   if (port.contains(ceeNumber)) {
      fields.emplace_back("CEE sequence number received",
                          std::to_string(port.at(ceeNumber).get<unsigned>()));
   }
   out << port.at("port").get<std::string>() << "\n";
   printFields(out, fields, "  ");
}

void printAll(std::ostream& out, const Json& view, const Terminal& terminal) {
   Fields fields = counterFields(view.at("table"), tableCounters);
   addAge(fields, "Last change", view.at("table"), "sinceChangeSeconds");
   printFields(out, fields);

   std::vector<Column> columns{{"Port", Column::Kind::name}, {"Nbrs", Column::Kind::number}};
   for (const Counter& counter : portCounters) {
      columns.push_back({counter.title, Column::Kind::number});
   }
   Table table(columns);
   for (const Json& port : view.at("ports")) {
      std::vector<std::string> row{port.at("port"),
                                   std::to_string(port.at("neighbors").get<size_t>())};
      for (const Counter& counter : portCounters) row.push_back(count(port, counter));
      table.add(row);
   }
   out << "\n";
   table.print(out, terminal);
}

void run(const Options& options, Session& session) {
   Agent agent(session);
   // The ports' counters, and of the neighbors how many there are.
   Json view = statisticsView(agent.table(), agent.portStatuses(options.port, false), agent.now());
   if (options.json) {
      session.out << Json{{"statistics", view}}.dump(2) << "\n";
   } else if (options.port) {
      printPort(session.out, view.at("ports").at(0));
   } else {
      printAll(session.out, view, session.terminal);
   }
}

}  // namespace

void addShowStatistics(CLI::App& show, Session& session) {
   auto options = std::make_shared<Options>();
   CLI::App* command = show.add_subcommand("statistics", "counters of the ports and of the table");
   command->fallthrough();
   command->add_option("PORT", options->port, "only this port, in words");
   command->add_flag("--json", options->json, "as JSON for scripts");
   command->callback([options, &session] { run(*options, session); });
}

}  // namespace LldpCli
