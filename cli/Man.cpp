#include "cli/Man.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "cli/Help.h"

namespace LldpCli {
namespace {

// Text that roff takes as it is: a backslash, dash or quote would mean something else, as would a
// line's first dot.
std::string roff(const std::string& text) {
   std::string out;
   if (text.starts_with('.')) out += "\\&";
   for (char c : text) {
      switch (c) {
         case '\\':
            out += "\\e";
            break;
         case '-':
            out += "\\-";
            break;
         case '\'':
            out += "\\(aq";
            break;
         case '"':
            out += "\\(dq";
            break;
         default:
            out += c;
      }
   }
   return out;
}

class Page {
 public:
   void section(const char* title) { out_ += fmt::format(".SH {}\n", title); }
   void part(const std::string& title) { out_ += fmt::format(".SS \"{}\"\n", roff(title)); }
   void paragraph(const std::string& text) { out_ += fmt::format(".PP\n{}\n", roff(text)); }
   void entry(const std::string& what, const std::string& words) {
      out_ += fmt::format(".TP\n.B {}\n{}\n", roff(what), roff(words));
   }
   template <class Lines>
   void entries(const Lines& lines) {
      for (const HelpLine& line : lines) entry(line.what, line.words);
   }
   void raw(const std::string& text) { out_ += text; }
   const std::string& text() const { return out_; }

 private:
   std::string out_;
};

std::vector<const CLI::Option*> positionals(const CLI::App& app) {
   return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<const CLI::Option*> flags(const CLI::App& app) {
   return app.get_options([&app](const CLI::Option* option) {
      return option->nonpositional() && option != app.get_help_ptr();
   });
}

std::string withValue(const CLI::Option& option) {
   std::string name = option.get_name(false, true);
   std::string value = option.get_type_name();
   return value.empty() ? name : name + " " + value;
}

// The command with the arguments of those that it stands below.
std::string commandLine(const CLI::App& app) {
   std::string line = app.get_parent() ? commandLine(*app.get_parent()) + " " : "";
   line += app.get_name();
   for (const CLI::Option* option : positionals(app)) {
      bool many = option->get_expected_max() > 1;
      std::string name = option->get_name(true) + (many ? " ..." : "");
      line += " " + (many || option->get_required() ? name : "[" + name + "]");
   }
   return line;
}

void addCommands(Page& page, const CLI::App& app) {
   auto commands = app.get_subcommands({});
   bool runs = commands.empty() || !positionals(app).empty();
   if (runs) {
      std::string line = commandLine(app);
      for (const CLI::Option* flag : flags(app)) line += " [" + withValue(*flag) + "]";
      page.part(line);
      page.paragraph(app.get_description());
      for (const CLI::Option* option : positionals(app)) {
         page.entry(option->get_name(true), option->get_description());
      }
      for (const CLI::Option* option : flags(app)) {
         page.entry(withValue(*option), option->get_description());
      }
   }
   for (const CLI::App* command : commands) addCommands(page, *command);
}

void addOptions(Page& page, const CLI::App& app) {
   page.section("OPTIONS");
   page.paragraph("These may stand anywhere in the line.");
   for (const CLI::Option* option : flags(app)) {
      const std::string value = option->get_default_str();
      page.entry(
          withValue(*option),
          option->get_description() + (value.empty() ? "" : fmt::format(" (default {})", value)));
   }
   page.entry(app.get_help_ptr()->get_name(false, true), app.get_help_ptr()->get_description());
}

}  // namespace

std::string manPage(const CLI::App& app) {
   Page page;
   page.raw(".TH LLDP 1 \"\" \"lldp\\-agent\" \"User Commands\"\n");
   page.section("NAME");
   page.raw("lldp \\- shows and sets what the LLDP agent of this switch says and hears\n");
   page.section("SYNOPSIS");
   page.raw(".B lldp\n[\\fIOPTION\\fR]... \\fICOMMAND\\fR [\\fIARGUMENT\\fR]...\n");
   page.section("DESCRIPTION");
   page.paragraph(
       "lldp is a client of the management API of lldp-agentd and reaches it through a Unix "
       "socket. Who may not use the socket, but read.sock in the same folder, can still use the "
       "commands that only read. With --store it needs no agent on this machine: it starts "
       "lldp-agentd for as long as it runs itself, to reach the state store that the agents "
       "share.");
   page.paragraph(
       "In everything that it writes, control characters, octets that are no UTF-8 and characters "
       "that steer or hide text come out as \\xNN for each octet, and a backslash as \\\\.");
   page.section("COMMANDS");
   for (const CLI::App* command : app.get_subcommands({})) addCommands(page, *command);
   page.section("SETTINGS");
   page.entries(settingLines(true));
   page.part("PORTS");
   page.entries(portsForms());
   addOptions(page, app);
   page.section("EXAMPLES");
   page.entries(examples());
   page.section("EXIT STATUS");
   page.entries(exitStatuses());
   page.section("ENVIRONMENT");
   page.entries(environment());
   return page.text();
}

void addMan(CLI::App& app, Session& session) {
   CLI::App* command = app.add_subcommand("man", "the manual page, in roff: lldp man | man -l -");
   command->fallthrough();
   command->callback([&app, &session] { session.out << manPage(app); });
}

}  // namespace LldpCli
