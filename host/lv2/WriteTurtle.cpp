// Writes the bundle's Turtle from the table of parameters, while the plug-in is built.
//   write_turtle FOLDER BINARY [window]
// BINARY is the plug-in's path inside the bundle; with the last word it has a window too.
#include "host/bridge/Parameters.h"
#include "host/lv2/Lv2Names.h"

#include <fstream>
#include <iostream>
#include <string>

namespace {

constexpr const char* kPrefixes = R"(@prefix atom: <http://lv2plug.in/ns/ext/atom#> .
@prefix bufsz: <http://lv2plug.in/ns/ext/buf-size#> .
@prefix doap: <http://usefulinc.com/ns/doap#> .
@prefix foaf: <http://xmlns.com/foaf/0.1/> .
@prefix log: <http://lv2plug.in/ns/ext/log#> .
@prefix lv2: <http://lv2plug.in/ns/lv2core#> .
@prefix midi: <http://lv2plug.in/ns/ext/midi#> .
@prefix opts: <http://lv2plug.in/ns/ext/options#> .
@prefix param: <http://lv2plug.in/ns/ext/parameters#> .
@prefix pprops: <http://lv2plug.in/ns/ext/port-props#> .
@prefix rdf: <http://www.w3.org/1999/02/22-rdf-syntax-ns#> .
@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .
@prefix rsz: <http://lv2plug.in/ns/ext/resize-port#> .
@prefix state: <http://lv2plug.in/ns/ext/state#> .
@prefix time: <http://lv2plug.in/ns/ext/time#> .
@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .
@prefix units: <http://lv2plug.in/ns/extensions/units#> .
@prefix urid: <http://lv2plug.in/ns/ext/urid#> .
@prefix work: <http://lv2plug.in/ns/ext/worker#> .

)";

constexpr const char* kPlugin = R"(    a lv2:Plugin , lv2:MIDIPlugin , doap:Project ;
    doap:name "Korvanel Looper" ;
    doap:license <https://www.gnu.org/licenses/gpl-3.0.html> ;
    doap:maintainer [ foaf:name "Korvanel" ; foaf:homepage <https://korvanel.org/> ] ;
    rdfs:comment "Plays a MIDI pattern in step with the host's transport." ;
    lv2:minorVersion 0 ;
    lv2:microVersion 1 ;
    lv2:requiredFeature urid:map ;
    lv2:optionalFeature lv2:hardRTCapable , work:schedule , state:threadSafeRestore , log:log ,
        opts:options , bufsz:boundedBlockLength ;
    lv2:extensionData state:interface , work:interface , opts:interface ;
    opts:supportedOption bufsz:maxBlockLength , bufsz:nominalBlockLength , param:sampleRate ;
    lv2:port )";

// Without the idle interface the window would never move, and without the instance it has nothing
// to show: a host that runs windows in another process can have none.
constexpr const char* kWindow = R"(    a ui:X11UI ;
    lv2:requiredFeature ui:parent , ui:idleInterface , <http://lv2plug.in/ns/ext/instance-access> ;
    lv2:optionalFeature ui:resize , opts:options , urid:map , log:log ;
    lv2:extensionData ui:idleInterface , ui:resize ;
    opts:supportedOption ui:scaleFactor .
)";

constexpr const char* kInPort = R"([
        a lv2:InputPort , atom:AtomPort ;
        lv2:index 0 ;
        lv2:symbol "in" ;
        lv2:name "In" ;
        lv2:designation lv2:control ;
        atom:bufferType atom:Sequence ;
        atom:supports midi:MidiEvent , time:Position
    ])";

constexpr const char* kOutPort = R"([
        a lv2:OutputPort , atom:AtomPort ;
        lv2:index 1 ;
        lv2:symbol "out" ;
        lv2:name "Out" ;
        lv2:designation lv2:control ;
        atom:bufferType atom:Sequence ;
        atom:supports midi:MidiEvent ;
        rsz:minimumSize 65536
    ])";

constexpr const char* kEnabledPort = R"([
        a lv2:InputPort , lv2:ControlPort ;
        lv2:index 2 ;
        lv2:symbol "enabled" ;
        lv2:name "Enabled" ;
        lv2:designation lv2:enabled ;
        lv2:default 1 ;
        lv2:minimum 0 ;
        lv2:maximum 1 ;
        lv2:portProperty lv2:toggled , lv2:integer
    ])";

constexpr const char* kFreeWheelingPort = R"([
        a lv2:InputPort , lv2:ControlPort ;
        lv2:index 3 ;
        lv2:symbol "free_wheeling" ;
        lv2:name "Free-Wheeling" ;
        lv2:designation lv2:freeWheeling ;
        lv2:default 0 ;
        lv2:minimum 0 ;
        lv2:maximum 1 ;
        lv2:portProperty lv2:toggled , lv2:integer , pprops:notOnGUI
    ])";

void writeKind(std::ostream& out, const Parameter& parameter)
{
    switch (parameter.kind) {
    case ParameterKind::Number:
        out << "        lv2:portProperty lv2:integer";
        break;
    case ParameterKind::Toggle:
        out << "        lv2:portProperty lv2:integer , lv2:toggled";
        break;
    case ParameterKind::Choice:
        out << "        lv2:portProperty lv2:integer , lv2:enumeration";
        for (int value = parameter.min; value <= parameter.max; ++value)
            out << " ;\n        lv2:scalePoint [ rdfs:label \""
                << parameter.choices[static_cast<std::size_t>(value - parameter.min)]
                << "\" ; rdf:value " << value << " ]";
        break;
    }
    if (std::string(parameter.unit) == "%")
        out << " ;\n        units:unit units:pc";
}

void writeParameter(std::ostream& out, const Parameter& parameter, std::size_t port)
{
    out << "[\n        a lv2:InputPort , lv2:ControlPort ;\n"
        << "        lv2:index " << port << " ;\n"
        << "        lv2:symbol \"" << parameter.id << "\" ;\n"
        << "        lv2:name \"" << parameter.name << "\" ;\n"
        << "        lv2:default " << parameter.normal << " ;\n"
        << "        lv2:minimum " << parameter.min << " ;\n"
        << "        lv2:maximum " << parameter.max << " ;\n";
    writeKind(out, parameter);
    out << "\n    ]";
}

void writePlugin(std::ostream& out, bool hasWindow)
{
    out << kPrefixes << '<' << kLv2Uri << ">\n";
    if (hasWindow)
        out << "    ui:ui <" << kLv2UiUri << "> ;\n";
    out << kPlugin << kInPort << " , " << kOutPort << " , " << kEnabledPort << " , "
        << kFreeWheelingPort;
    std::size_t port = kLv2FirstParameter;
    for (const Parameter& parameter : Parameters::table()) {
        out << " , ";
        writeParameter(out, parameter, port++);
    }
    out << " .\n";
    if (hasWindow)
        out << "\n<" << kLv2UiUri << ">\n" << kWindow;
}

void writeManifest(std::ostream& out, const std::string& binary, bool hasWindow)
{
    out << "@prefix lv2: <http://lv2plug.in/ns/lv2core#> .\n"
        << "@prefix rdfs: <http://www.w3.org/2000/01/rdf-schema#> .\n"
        << "@prefix ui: <http://lv2plug.in/ns/extensions/ui#> .\n\n"
        << '<' << kLv2Uri << ">\n"
        << "    a lv2:Plugin ;\n"
        << "    lv2:binary <" << binary << "> ;\n"
        << "    rdfs:seeAlso <Looper.ttl> .\n";
    if (hasWindow)
        out << "\n<" << kLv2UiUri << ">\n"
            << "    a ui:X11UI ;\n"
            << "    lv2:binary <" << binary << "> ;\n"
            << "    rdfs:seeAlso <Looper.ttl> .\n";
}

} // namespace

int main(int count, char** arguments)
{
    const bool hasWindow = count == 4 && std::string(arguments[3]) == "window";
    if (count != 3 && !hasWindow) {
        std::cerr << "write_turtle FOLDER BINARY [window]\n";
        return 1;
    }
    const std::string folder = arguments[1];
    std::ofstream manifest(folder + "/manifest.ttl");
    writeManifest(manifest, arguments[2], hasWindow);
    std::ofstream plugin(folder + "/Looper.ttl");
    writePlugin(plugin, hasWindow);
    manifest.close();
    plugin.close();
    return manifest && plugin ? 0 : 1;
}
