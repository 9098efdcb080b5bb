#include "ScenarioParser.h"

#include <unicode/unistr.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <stdexcept>

#include "KeyNameTable.h"
#include "preferences/SwitcherPreferencesCodec.h"

namespace orvane::simulator {

namespace {

// A malformed line; caught once per line and turned into the parser's answer.
struct LineError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Token {
    std::string name;  // empty for a positional token
    std::string value;
};

void appendUtf8(std::string& output, char32_t scalar) {
    if (scalar < 0x80) {
        output.push_back(static_cast<char>(scalar));
    } else if (scalar < 0x800) {
        output.push_back(static_cast<char>(0xC0 | (scalar >> 6)));
        output.push_back(static_cast<char>(0x80 | (scalar & 0x3F)));
    } else if (scalar < 0x10000) {
        output.push_back(static_cast<char>(0xE0 | (scalar >> 12)));
        output.push_back(static_cast<char>(0x80 | ((scalar >> 6) & 0x3F)));
        output.push_back(static_cast<char>(0x80 | (scalar & 0x3F)));
    } else {
        output.push_back(static_cast<char>(0xF0 | (scalar >> 18)));
        output.push_back(static_cast<char>(0x80 | ((scalar >> 12) & 0x3F)));
        output.push_back(static_cast<char>(0x80 | ((scalar >> 6) & 0x3F)));
        output.push_back(static_cast<char>(0x80 | (scalar & 0x3F)));
    }
}

std::string readQuoted(std::string_view line, std::size_t& position) {
    std::string value;
    ++position;  // the opening quote
    while (position < line.size()) {
        char character = line[position++];
        if (character == '"') {
            return value;
        }
        if (character != '\\') {
            value.push_back(character);
            continue;
        }
        if (position >= line.size()) {
            break;
        }
        char escaped = line[position++];
        switch (escaped) {
            case '"':
            case '\\':
                value.push_back(escaped);
                break;
            case 'n':
                value.push_back('\n');
                break;
            case 't':
                value.push_back('\t');
                break;
            case 'u': {
                if (position >= line.size() || line[position] != '{') {
                    throw LineError("\\u must be followed by {hex digits}");
                }
                auto close = line.find('}', position);
                if (close == std::string_view::npos) {
                    throw LineError("unterminated \\u{...} escape");
                }
                auto digits = line.substr(position + 1, close - position - 1);
                std::uint32_t scalar = 0;
                auto [end, error] =
                    std::from_chars(digits.data(), digits.data() + digits.size(), scalar, 16);
                if (digits.empty() || error != std::errc{} ||
                    end != digits.data() + digits.size() || scalar > 0x10FFFF ||
                    (scalar >= 0xD800 && scalar <= 0xDFFF)) {
                    throw LineError("\\u{" + std::string(digits) + "} is no Unicode scalar value");
                }
                appendUtf8(value, scalar);
                position = close + 1;
                break;
            }
            default:
                throw LineError(std::string("unknown escape \\") + escaped);
        }
    }
    throw LineError("unterminated quoted text");
}

std::vector<Token> tokenize(std::string_view line) {
    std::vector<Token> tokens;
    std::size_t position = 0;
    while (true) {
        while (position < line.size() && (line[position] == ' ' || line[position] == '\t')) {
            ++position;
        }
        if (position >= line.size() || line[position] == '#') {
            return tokens;
        }
        Token token;
        if (line[position] == '"') {
            token.value = readQuoted(line, position);
        } else {
            std::size_t start = position;
            while (position < line.size() && line[position] != ' ' && line[position] != '\t' &&
                   line[position] != '=' && line[position] != '"') {
                ++position;
            }
            std::string word(line.substr(start, position - start));
            if (position < line.size() && line[position] == '=') {
                ++position;
                token.name = word;
                if (position < line.size() && line[position] == '"') {
                    token.value = readQuoted(line, position);
                } else {
                    std::size_t valueStart = position;
                    while (position < line.size() && line[position] != ' ' &&
                           line[position] != '\t') {
                        ++position;
                    }
                    token.value = std::string(line.substr(valueStart, position - valueStart));
                }
            } else if (position < line.size() && line[position] == '"') {
                throw LineError("a quote may only open a value: \"" + word + "\"");
            } else {
                token.value = word;
            }
        }
        if (position < line.size() && line[position] != ' ' && line[position] != '\t') {
            throw LineError("expected a space after \"" + token.value + "\"");
        }
        tokens.push_back(std::move(token));
    }
}

template <typename Integer>
Integer parseInteger(const std::string& text, std::string_view what) {
    Integer value{};
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        throw LineError(std::string(what) + " must be an integer in range, not \"" + text + "\"");
    }
    return value;
}

double parseNumber(const std::string& text, std::string_view what) {
    double value = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || error != std::errc{} || end != text.data() + text.size()) {
        throw LineError(std::string(what) + " must be a number, not \"" + text + "\"");
    }
    return value;
}

Rect parseFrame(const std::string& text) {
    std::vector<double> numbers;
    std::size_t start = 0;
    while (start <= text.size()) {
        auto comma = text.find(',', start);
        if (comma == std::string::npos) {
            comma = text.size();
        }
        numbers.push_back(parseNumber(text.substr(start, comma - start), "frame"));
        start = comma + 1;
    }
    if (numbers.size() != 4 || numbers[2] < 0 || numbers[3] < 0) {
        throw LineError("frame must be x,y,width,height with a width and height of 0 or more");
    }
    return Rect{{numbers[0], numbers[1]}, {numbers[2], numbers[3]}};
}

KeyboardEventFlags parseModifierNames(const std::vector<std::string>& names) {
    KeyboardEventFlags flags = 0;
    for (const auto& name : names) {
        if (name == "none") {
            continue;
        }
        if (name == "shift") {
            flags |= keyboard_event_flag::shift;
        } else if (name == "control") {
            flags |= keyboard_event_flag::control;
        } else if (name == "option") {
            flags |= keyboard_event_flag::option;
        } else if (name == "command") {
            flags |= keyboard_event_flag::command;
        } else {
            throw LineError("unknown modifier \"" + name +
                            "\" (expected shift, control, option, command or none)");
        }
    }
    return flags;
}

std::vector<std::string> splitOn(const std::string& text, char separator) {
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= text.size()) {
        auto end = text.find(separator, start);
        if (end == std::string::npos) {
            end = text.size();
        }
        parts.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

std::string describeFlags(KeyboardEventFlags flags) {
    std::string names;
    auto add = [&](KeyboardEventFlags mask, const char* name) {
        if ((flags & mask) != 0) {
            names += names.empty() ? "" : "+";
            names += name;
        }
    };
    add(keyboard_event_flag::control, "control");
    add(keyboard_event_flag::option, "option");
    add(keyboard_event_flag::shift, "shift");
    add(keyboard_event_flag::command, "command");
    return names.empty() ? "none" : names;
}

// The attributes of one directive: each may be given once, and every one given must be known.
class Attributes {
  public:
    Attributes(const std::vector<Token>& tokens, std::set<std::string> known)
        : known_(std::move(known)) {
        for (std::size_t index = 1; index < tokens.size(); ++index) {
            const auto& token = tokens[index];
            if (token.name.empty()) {
                positional_.push_back(token.value);
                continue;
            }
            if (!known_.contains(token.name)) {
                throw LineError("unknown attribute \"" + token.name + "\" for \"" +
                                tokens.front().value + "\"");
            }
            if (!named_.emplace(token.name, token.value).second) {
                throw LineError("attribute \"" + token.name + "\" given twice");
            }
        }
    }

    const std::vector<std::string>& positional() const { return positional_; }
    const std::string* find(const std::string& name) const {
        auto found = named_.find(name);
        return found == named_.end() ? nullptr : &found->second;
    }
    const std::string& require(const std::string& name, const std::string& directive) const {
        if (const auto* value = find(name)) {
            return *value;
        }
        throw LineError("\"" + directive + "\" needs " + name + "=");
    }

  private:
    std::set<std::string> known_;
    std::vector<std::string> positional_;
    std::map<std::string, std::string> named_;
};

std::u16string toUtf16(const std::string& text) {
    auto unicode = icu::UnicodeString::fromUTF8(text);
    return std::u16string(unicode.getBuffer(), static_cast<std::size_t>(unicode.length()));
}

class LineParser {
  public:
    std::optional<ScenarioStep::Action> parse(std::string_view line) {
        auto firstWord = line.find_first_not_of(" \t");
        if (firstWord != std::string_view::npos &&
            line.substr(firstWord).starts_with("stored-preferences")) {
            auto rest = line.substr(firstWord + std::string_view("stored-preferences").size());
            if (rest.empty() || rest.front() == ' ' || rest.front() == '\t') {
                // The bytes stand as written, bad ones included; only the separating blank goes.
                return StoredPreferencesStep{std::string(rest.empty() ? rest : rest.substr(1))};
            }
        }
        if (firstWord != std::string_view::npos &&
            line.substr(firstWord).starts_with("preferences")) {
            auto rest = line.substr(firstWord + std::string_view("preferences").size());
            if (rest.empty() || rest.front() == ' ' || rest.front() == '\t') {
                return parsePreferences(rest);
            }
        }
        auto tokens = tokenize(line);
        if (tokens.empty()) {
            return std::nullopt;
        }
        const auto& directive = tokens.front();
        if (!directive.name.empty()) {
            throw LineError("a line starts with a directive, not \"" + directive.name + "=\"");
        }
        const std::string& word = directive.value;
        if (word == "launch") {
            return parseLaunch(tokens);
        }
        if (word == "quit") {
            return parseQuit(tokens);
        }
        if (word == "window" || word == "create") {
            return parseWindow(tokens, word == "create");
        }
        if (word == "focus") {
            return FocusWindowStep{parseWindowTarget(tokens)};
        }
        if (word == "destroy") {
            auto identifier = parseWindowTarget(tokens);
            windowOwners_.erase(identifier);
            return DestroyWindowStep{identifier};
        }
        if (word == "minimize" || word == "unminimize") {
            return MinimizeWindowStep{parseWindowTarget(tokens), word == "minimize"};
        }
        if (word == "frontmost") {
            return parseFrontmost(tokens);
        }
        if (word == "advance") {
            return parseAdvance(tokens);
        }
        if (word == "window-list") {
            return parseWindowListFault(tokens);
        }
        if (word == "print") {
            Attributes attributes(tokens, {});
            if (attributes.positional() == std::vector<std::string>{"desktop"}) {
                return PrintStep{PrintStep::Subject::desktop};
            }
            if (attributes.positional() == std::vector<std::string>{"overlay"}) {
                return PrintStep{PrintStep::Subject::overlay};
            }
            if (attributes.positional() == std::vector<std::string>{"welcome"}) {
                return PrintStep{PrintStep::Subject::welcome};
            }
            if (attributes.positional() == std::vector<std::string>{"program"}) {
                return PrintStep{PrintStep::Subject::program};
            }
            if (attributes.positional() == std::vector<std::string>{"defaults"}) {
                return PrintStep{PrintStep::Subject::defaults};
            }
            if (attributes.positional() == std::vector<std::string>{"menu"}) {
                return PrintStep{PrintStep::Subject::menu};
            }
            if (attributes.positional() == std::vector<std::string>{"settings"}) {
                return PrintStep{PrintStep::Subject::settings};
            }
            throw LineError(
                "\"print\" takes what to print: desktop, overlay, welcome, program, defaults, "
                "menu or settings");
        }
        if (word == "installed") {
            return parseInstalled(tokens);
        }
        if (word == "screen-recording" || word == "accessibility") {
            const auto granted = onlyWord(tokens, {"granted", "denied"});
            return PermissionStep{word == "accessibility" ? PermissionCapability::accessibility
                                                          : PermissionCapability::screenRecording,
                                  granted == "granted"};
        }
        if (word == "start") {
            onlyWord(tokens, {});
            if (programState_ != ProgramState::notStarted) {
                throw LineError(programState_ == ProgramState::startedImplicitly
                                    ? "\"start\" comes before any line that needs the program"
                                    : "the program is started once");
            }
            programState_ = ProgramState::started;
            startsExplicitly_ = true;
            return StartProgramStep{};
        }
        if (auto kind = systemEventKind(tokens)) {
            return SystemEventStep{*kind};
        }
        if (word == "tap-disabled") {
            return parseTapDisabled(tokens);
        }
        if (auto kind = programActionKind(tokens)) {
            needProgram(word);
            if (*kind == ProgramActionStep::Kind::quitProgram) {
                programState_ = ProgramState::quit;
            }
            return ProgramActionStep{*kind};
        }
        if (word == "settings") {
            needProgram(word);
            return parseSettings(tokens);
        }
        if (word == "menu") {
            needProgram(word);
            Attributes attributes(tokens, {});
            const auto& words = attributes.positional();
            if (words.size() != 2 || words.front() != "choose") {
                throw LineError("\"menu\" takes choose and an entry's quoted text");
            }
            if (words.back() == "Quit Orvane") {
                programState_ = ProgramState::quit;
            }
            return MenuStep{words.back()};
        }
        if (word == "login-item") {
            return LoginItemStep{onlyWord(tokens, {"accepts", "refuses"}) == "refuses"};
        }
        if (word == "updater") {
            return UpdaterStep{onlyWord(tokens, {"can-check", "busy"}) == "can-check"};
        }
        if (word == "welcome") {
            return parseWelcome(tokens);
        }
        if (word == "log-level") {
            return parseLogLevel(tokens);
        }
        if (word == "flags") {
            return parseFlags(tokens);
        }
        if (word == "down" || word == "up") {
            return parseKey(
                tokens, word == "down" ? keyboard_event_type::keyDown : keyboard_event_type::keyUp);
        }
        if (word == "note") {
            Attributes attributes(tokens, {});
            if (attributes.positional().size() != 1) {
                throw LineError("\"note\" takes one quoted text");
            }
            return NoteStep{attributes.positional().front()};
        }
        throw LineError("unknown directive \"" + word + "\"");
    }

    // `tap` is two steps; the caller asks for the key-up after the key-down.
    static bool isTap(std::string_view line) {
        auto start = line.find_first_not_of(" \t");
        if (start == std::string_view::npos) {
            return false;
        }
        auto word = line.substr(start);
        return word.starts_with("tap") &&
               (word.size() == 3 || word[3] == ' ' || word[3] == '\t' || word[3] == '#');
    }

    std::vector<ScenarioStep::Action> parseTap(std::string_view line) {
        auto tokens = tokenize(line);
        tokens.front().value = "down";
        auto down = parseKey(tokens, keyboard_event_type::keyDown);
        auto up = std::get<KeyEventStep>(down);
        up.type = keyboard_event_type::keyUp;
        up.isAutorepeat = false;
        up.typedText.clear();
        up.description = "up " + up.description.substr(std::string_view("down ").size());
        return {down, up};
    }

    bool startsExplicitly() const { return startsExplicitly_; }

  private:
    ScenarioStep::Action parseLaunch(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {"pid", "name", "policy", "bundle", "refuses-accessibility",
                                       "accessibility-delay", "refuse-notifications"});
        LaunchStep step;
        auto& running = step.application.runningApplication;
        running.processIdentifier =
            parseInteger<ProcessIdentifier>(attributes.require("pid", "launch"), "pid");
        if (const auto* name = attributes.find("name")) {
            running.localizedName = *name;
        }
        if (const auto* bundle = attributes.find("bundle")) {
            running.bundleIdentifier = *bundle;
        }
        if (const auto* policy = attributes.find("policy")) {
            if (*policy == "regular") {
                running.activationPolicy = ApplicationActivationPolicy::regular;
            } else if (*policy == "accessory") {
                running.activationPolicy = ApplicationActivationPolicy::accessory;
            } else if (*policy == "prohibited") {
                running.activationPolicy = ApplicationActivationPolicy::prohibited;
            } else {
                throw LineError("policy must be regular, accessory or prohibited, not \"" +
                                *policy + "\"");
            }
        }
        if (const auto* error = attributes.find("refuses-accessibility")) {
            step.application.windowsAttributeError =
                parseInteger<AccessibilityError>(*error, "refuses-accessibility (an AXError)");
        }
        if (const auto* delay = attributes.find("accessibility-delay")) {
            step.application.accessibilityResponseDelay =
                parseNumber(*delay, "accessibility-delay");
            if (step.application.accessibilityResponseDelay < 0) {
                throw LineError("accessibility-delay must be 0 or more seconds");
            }
        }
        if (const auto* names = attributes.find("refuse-notifications")) {
            for (const auto& name : splitOn(*names, ',')) {
                step.application.refusedNotifications.insert(name);
            }
        }
        for (const auto& flag : attributes.positional()) {
            if (flag == "windows-not-array") {
                step.application.windowsAttributeIsNotArray = true;
            } else if (flag == "observer-fails") {
                step.application.observerCreationFails = true;
            } else if (flag == "pid-lookup-fails") {
                step.application.processIdentifierLookupFails = true;
            } else if (flag == "refuses-accessibility") {
                step.application.windowsAttributeError = accessibility_error::cannotComplete;
            } else {
                throw LineError("unknown application flag \"" + flag +
                                "\" (expected windows-not-array, observer-fails, "
                                "pid-lookup-fails or refuses-accessibility)");
            }
        }
        if (!runningProcesses_.insert(running.processIdentifier).second) {
            throw LineError("process " + std::to_string(running.processIdentifier) +
                            " is already running");
        }
        return step;
    }

    ScenarioStep::Action parseQuit(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {"pid"});
        const auto process =
            parseInteger<ProcessIdentifier>(attributes.require("pid", "quit"), "pid");
        if (!attributes.positional().empty()) {
            throw LineError("\"quit\" takes pid=N only");
        }
        if (runningProcesses_.erase(process) == 0) {
            throw LineError("process " + std::to_string(process) + " is not running");
        }
        std::erase_if(windowOwners_, [&](const auto& entry) { return entry.second == process; });
        return QuitStep{process};
    }

    ScenarioStep::Action parseWindow(const std::vector<Token>& tokens, bool inFront) {
        const std::string directive = inFront ? "create" : "window";
        Attributes attributes(
            tokens, {"id", "pid", "app", "title", "list-title", "ax-title", "frame", "ax-frame",
                     "layer", "alpha", "subrole", "wrong-type", "missing-keys"});
        AddWindowStep step;
        step.inFront = inFront;
        auto& window = step.window;
        window.windowIdentifier =
            parseInteger<WindowIdentifier>(attributes.require("id", directive), "id");
        window.owningProcessIdentifier =
            parseInteger<ProcessIdentifier>(attributes.require("pid", directive), "pid");
        if (const auto* application = attributes.find("app")) {
            step.applicationName = *application;
        }
        if (const auto* title = attributes.find("title")) {
            window.listTitle = *title;
            window.accessibilityTitle = *title;
        }
        if (const auto* title = attributes.find("list-title")) {
            window.listTitle = *title;
        }
        if (const auto* title = attributes.find("ax-title")) {
            window.accessibilityTitle = *title;
        }
        if (const auto* frame = attributes.find("frame")) {
            window.bounds = parseFrame(*frame);
        }
        if (const auto* frame = attributes.find("ax-frame")) {
            window.accessibilityFrame = parseFrame(*frame);
        }
        if (const auto* layer = attributes.find("layer")) {
            window.layer = parseInteger<std::int64_t>(*layer, "layer");
        }
        if (const auto* alpha = attributes.find("alpha")) {
            window.alpha = parseNumber(*alpha, "alpha");
        }
        if (const auto* subrole = attributes.find("subrole")) {
            window.subrole = *subrole == "none" ? std::nullopt : std::optional(*subrole);
        }
        if (const auto* names = attributes.find("wrong-type")) {
            for (const auto& name : splitOn(*names, ',')) {
                window.wronglyTypedAttributes.insert(name);
            }
        }
        if (const auto* keys = attributes.find("missing-keys")) {
            for (const auto& key : splitOn(*keys, ',')) {
                window.missingWindowListKeys.insert(key);
            }
        }
        for (const auto& flag : attributes.positional()) {
            if (flag == "minimized") {
                window.isMinimized = true;
            } else if (flag == "offscreen") {
                window.isOffScreen = true;
            } else if (flag == "hidden-from-accessibility") {
                window.isInAccessibilityTree = false;
            } else {
                throw LineError("unknown window flag \"" + flag +
                                "\" (expected minimized, offscreen or hidden-from-accessibility)");
            }
        }
        if (window.windowIdentifier == 0) {
            throw LineError("window id 0 names no window");
        }
        if (windowOwners_.contains(window.windowIdentifier)) {
            throw LineError("window " + std::to_string(window.windowIdentifier) +
                            " is already on the desktop");
        }
        if (!runningProcesses_.contains(window.owningProcessIdentifier)) {
            if (!step.applicationName) {
                throw LineError("process " + std::to_string(window.owningProcessIdentifier) +
                                " is not running; launch it first or name it with app=");
            }
            runningProcesses_.insert(window.owningProcessIdentifier);
        }
        windowOwners_.emplace(window.windowIdentifier, window.owningProcessIdentifier);
        return step;
    }

    WindowIdentifier parseWindowTarget(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {"id"});
        const auto& directive = tokens.front().value;
        const auto identifier =
            parseInteger<WindowIdentifier>(attributes.require("id", directive), "id");
        if (!attributes.positional().empty()) {
            throw LineError("\"" + directive + "\" takes id=N only");
        }
        if (!windowOwners_.contains(identifier)) {
            throw LineError("window " + std::to_string(identifier) + " is not on the desktop");
        }
        return identifier;
    }

    ScenarioStep::Action parseFrontmost(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {"pid"});
        if (attributes.positional() == std::vector<std::string>{"none"} &&
            attributes.find("pid") == nullptr) {
            return SetFrontmostStep{std::nullopt};
        }
        if (!attributes.positional().empty()) {
            throw LineError("\"frontmost\" takes pid=N or none");
        }
        const auto process =
            parseInteger<ProcessIdentifier>(attributes.require("pid", "frontmost"), "pid");
        if (!runningProcesses_.contains(process)) {
            throw LineError("process " + std::to_string(process) + " is not running");
        }
        return SetFrontmostStep{process};
    }

    ScenarioStep::Action parseAdvance(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {});
        if (attributes.positional().size() != 1) {
            throw LineError("\"advance\" takes a number of seconds");
        }
        const double seconds = parseNumber(attributes.positional().front(), "advance");
        if (seconds < 0) {
            throw LineError("time only moves forward: advance takes 0 or more seconds");
        }
        return AdvanceClockStep{seconds};
    }

    ScenarioStep::Action parseWindowListFault(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {"fails"});
        WindowListFaultStep step;
        if (const auto* fails = attributes.find("fails"); fails != nullptr && *fails != "none") {
            for (const auto& options : splitOn(*fails, ',')) {
                step.failingOptions.insert(parseInteger<std::uint32_t>(options, "fails"));
            }
        }
        for (const auto& flag : attributes.positional()) {
            if (flag == "malformed") {
                step.malformed = true;
            } else if (flag != "well-formed") {
                throw LineError("unknown window-list flag \"" + flag +
                                "\" (expected malformed or well-formed)");
            }
        }
        return step;
    }

    ScenarioStep::Action parseInstalled(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {});
        if (attributes.positional().size() != 1) {
            throw LineError(
                "\"installed\" takes the application's path, e.g. \"/Applications/Notes.app\"");
        }
        const auto& path = attributes.positional().front();
        const auto slash = path.rfind('/');
        if (slash == std::string::npos || slash == 0 || slash + 1 == path.size()) {
            throw LineError("\"" + path + "\" is no path of a folder and a bundle");
        }
        return InstallApplicationStep{path.substr(0, slash), path.substr(slash + 1)};
    }

    ScenarioStep::Action parseLogLevel(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {});
        const auto& levels = attributes.positional();
        if (levels.size() == 1 && levels.front() == "debug") {
            return LogLevelStep{LogLevel::debug};
        }
        if (levels.size() == 1 && levels.front() == "info") {
            return LogLevelStep{LogLevel::info};
        }
        if (levels.size() == 1 && levels.front() == "error") {
            return LogLevelStep{LogLevel::error};
        }
        throw LineError("\"log-level\" takes debug, info or error");
    }

    ScenarioStep::Action parseFlags(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {});
        if (attributes.positional().empty()) {
            throw LineError("\"flags\" lists the modifiers held (or none)");
        }
        heldFlags_ = parseModifierNames(attributes.positional());
        KeyEventStep step;
        step.type = keyboard_event_type::flagsChanged;
        step.flags = heldFlags_;
        step.description = "flags " + describeFlags(heldFlags_);
        return step;
    }

    ScenarioStep::Action parseKey(const std::vector<Token>& tokens, KeyboardEventType type) {
        Attributes attributes(tokens, {"flags", "text"});
        const auto& directive = tokens.front().value;
        if (attributes.positional().empty()) {
            throw LineError("\"" + directive + "\" needs a key name or key code");
        }
        auto key = KeyNameTable::lookUp(attributes.positional().front());
        if (!key) {
            throw LineError("unknown key \"" + attributes.positional().front() + "\"");
        }
        KeyEventStep step;
        step.type = type;
        step.keyCode = key->keyCode;
        step.flags = heldFlags_;
        if (const auto* flags = attributes.find("flags")) {
            step.flags = parseModifierNames(splitOn(*flags, ','));
        }
        for (std::size_t index = 1; index < attributes.positional().size(); ++index) {
            const auto& flag = attributes.positional()[index];
            if (flag != "repeat" || type != keyboard_event_type::keyDown) {
                throw LineError("unknown key flag \"" + flag + "\"" +
                                (type == keyboard_event_type::keyDown ? " (expected repeat)" : ""));
            }
            step.isAutorepeat = true;
        }
        if (type == keyboard_event_type::keyDown) {
            const bool shifted = (step.flags & keyboard_event_flag::shift) != 0;
            step.typedText = shifted ? key->shiftedText : key->text;
            if (const auto* text = attributes.find("text")) {
                step.typedText = toUtf16(*text);
            }
        } else if (attributes.find("text") != nullptr) {
            throw LineError("a key-up types no text");
        }
        step.description = directive + " " + KeyNameTable::nameOf(step.keyCode) + " (" +
                           std::to_string(step.keyCode) + ") flags " + describeFlags(step.flags) +
                           (step.isAutorepeat ? " repeat" : "");
        return step;
    }

    ScenarioStep::Action parsePreferences(std::string_view json) {
        auto decoded = SwitcherPreferencesCodec::decode(json);
        if (!decoded.preferences) {
            throw LineError("preferences record rejected: " + decoded.error);
        }
        return SetPreferencesStep{*decoded.preferences};
    }

    enum class ProgramState { notStarted, startedImplicitly, started, quit };

    // A pane opens the window on it; the other forms act in the window that is open.
    static ScenarioStep::Action parseSettings(const std::vector<Token>& tokens) {
        using Kind = SettingsControlStep::Kind;
        Attributes attributes(tokens, {});
        const auto& words = attributes.positional();
        const auto count = words.size();
        if (count == 1) {
            if (const auto pane = settingsPaneFromRawValue(words[0])) {
                return OpenSettingsStep{*pane};
            }
            if (words[0] == "close") {
                return SettingsControlStep{Kind::close};
            }
        }
        if (count == 2 && words[0] == "tab") {
            if (const auto pane = settingsPaneFromRawValue(words[1])) {
                return SettingsControlStep{Kind::tab, {}, false, {}, *pane};
            }
        }
        if (count == 2 && words[0] == "press") {
            return SettingsControlStep{Kind::press, words[1]};
        }
        if (count == 3 && words[0] == "toggle" && (words[2] == "on" || words[2] == "off")) {
            return SettingsControlStep{Kind::toggle, words[1], words[2] == "on"};
        }
        if (count == 3 && words[0] == "pick") {
            return SettingsControlStep{Kind::pick, words[1], false, words[2]};
        }
        throw LineError(
            "\"settings\" takes a pane (general, shortcuts or about), close, tab and a pane, "
            "press \"title\", toggle \"label\" on|off, or pick \"label\" \"segment\"");
    }

    // The one positional word of a directive without attributes, out of `allowed` (none: no word).
    static std::string onlyWord(const std::vector<Token>& tokens,
                                const std::vector<std::string>& allowed) {
        Attributes attributes(tokens, {});
        const auto& words = attributes.positional();
        const auto& directive = tokens.front().value;
        if (allowed.empty()) {
            if (!words.empty()) {
                throw LineError("\"" + directive + "\" takes nothing more");
            }
            return {};
        }
        if (words.size() == 1 &&
            std::find(allowed.begin(), allowed.end(), words.front()) != allowed.end()) {
            return words.front();
        }
        std::string expected;
        for (std::size_t index = 0; index < allowed.size(); ++index) {
            expected += index == 0 ? "" : (index + 1 == allowed.size() ? " or " : ", ");
            expected += allowed[index];
        }
        throw LineError("\"" + directive + "\" takes " + expected);
    }

    void needProgram(const std::string& directive) {
        if (programState_ == ProgramState::quit) {
            throw LineError("\"" + directive + "\" after the program has quit");
        }
        if (programState_ == ProgramState::notStarted) {
            programState_ = ProgramState::startedImplicitly;
        }
    }

    static std::optional<SystemEventStep::Kind> systemEventKind(const std::vector<Token>& tokens) {
        using Kind = SystemEventStep::Kind;
        const auto& word = tokens.front().value;
        static const std::map<std::string, Kind> plain{{"sleep", Kind::sleep},
                                                       {"screens-sleep", Kind::screensSleep},
                                                       {"lock-screen", Kind::lockScreen},
                                                       {"switch-user", Kind::switchUser}};
        if (auto found = plain.find(word); found != plain.end()) {
            onlyWord(tokens, {});
            return found->second;
        }
        return std::nullopt;
    }

    static std::optional<ProgramActionStep::Kind> programActionKind(
        const std::vector<Token>& tokens) {
        using Kind = ProgramActionStep::Kind;
        const auto& word = tokens.front().value;
        static const std::map<std::string, Kind> plain{
            {"bring-to-front", Kind::bringToFront}, {"show-welcome", Kind::showWelcome},
            {"diagnostics", Kind::diagnostics},     {"copy-diagnostics", Kind::copyDiagnostics},
            {"bug-report", Kind::bugReport},        {"quit-program", Kind::quitProgram}};
        if (auto found = plain.find(word); found != plain.end()) {
            onlyWord(tokens, {});
            return found->second;
        }
        if (word == "reopen") {
            if (tokens.size() == 1) {
                return Kind::reopen;
            }
            onlyWord(tokens, {"windows-visible"});
            return Kind::reopenWithVisibleWindows;
        }
        return std::nullopt;
    }

    ScenarioStep::Action parseTapDisabled(const std::vector<Token>& tokens) {
        Attributes attributes(tokens, {"delay"});
        const auto& words = attributes.positional();
        if (words.size() != 1 || (words.front() != "timeout" && words.front() != "user-input")) {
            throw LineError("\"tap-disabled\" takes timeout or user-input, and optionally delay=");
        }
        SystemEventStep step{words.front() == "timeout"
                                 ? SystemEventStep::Kind::tapDisabledByTimeout
                                 : SystemEventStep::Kind::tapDisabledByUserInput};
        if (const auto* delay = attributes.find("delay")) {
            step.noticeDelay = parseNumber(*delay, "delay");
            if (step.noticeDelay < 0) {
                throw LineError("a delay is not negative");
            }
        }
        return step;
    }

    ScenarioStep::Action parseWelcome(const std::vector<Token>& tokens) {
        using Kind = WelcomeWindowStep::Kind;
        Attributes attributes(tokens, {});
        const auto& words = attributes.positional();
        needProgram("welcome");
        if (words.size() == 1 && words.front() == "continue") {
            return WelcomeWindowStep{Kind::continueButton};
        }
        if (words.size() == 1 && words.front() == "not-now") {
            return WelcomeWindowStep{Kind::notNowButton};
        }
        if (words.size() == 1 && words.front() == "close") {
            return WelcomeWindowStep{Kind::closeButton};
        }
        if (words.size() == 2 && words.front() == "press" &&
            (words.back() == "accessibility" || words.back() == "screen-recording")) {
            return WelcomeWindowStep{Kind::rowAction, words.back() == "accessibility"
                                                          ? PermissionCapability::accessibility
                                                          : PermissionCapability::screenRecording};
        }
        throw LineError(
            "\"welcome\" takes continue, not-now, close, or press accessibility|screen-recording");
    }

    ProgramState programState_ = ProgramState::notStarted;
    bool startsExplicitly_ = false;
    KeyboardEventFlags heldFlags_ = 0;
    // What the desktop holds at this line, so that a scenario naming what isn't there is caught
    // before anything plays.
    std::set<ProcessIdentifier> runningProcesses_;
    std::map<WindowIdentifier, ProcessIdentifier> windowOwners_;
};

}  // namespace

ScenarioParser::Result ScenarioParser::parse(std::string_view text) {
    Result result;
    Scenario scenario;
    LineParser parser;
    int lineNumber = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        auto end = text.find('\n', start);
        if (end == std::string_view::npos) {
            end = text.size();
        }
        auto line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') {
            line.remove_suffix(1);
        }
        start = end + 1;
        ++lineNumber;
        try {
            if (LineParser::isTap(line)) {
                for (auto& action : parser.parseTap(line)) {
                    scenario.steps.push_back({lineNumber, std::move(action)});
                }
            } else if (auto action = parser.parse(line)) {
                scenario.steps.push_back({lineNumber, std::move(*action)});
            }
        } catch (const LineError& error) {
            result.errorLine = lineNumber;
            result.errorMessage = error.what();
            return result;
        }
    }
    scenario.startsExplicitly = parser.startsExplicitly();
    result.scenario = std::move(scenario);
    return result;
}

}  // namespace orvane::simulator
