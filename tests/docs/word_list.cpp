#include "tests/docs/word_list.h"

namespace rasterkit::test {
namespace {

#define UNITS                                                                         \
  "(?:bits|bytes|words|dots|pixels|points|samples|colou?rs|indexes|lines|rows|"       \
  "files|records|units|values|numbers|frames|steps|degrees|headers|programs|"         \
  "nanoseconds|microseconds|milliseconds|seconds|ns|ms|megabytes|kilobytes|[kmg]i?b|" \
  "millimet(?:re|er)s|inches|characters|operations|executions)"
#define THINGS                                                                             \
  "(?:pixel|sample|inch|met(?:re|er)|millimet(?:re|er)|row|column|line|channel|file|room|" \
  "side|byte|word|value|colou?r|second|frame|picture|image|bitmap|screen|page|tile|strip|" \
  "band|record|entry|palette|folder|topic|target|processor|thread|unit|animation|quarter|" \
  "ramp|alpha|logical|pen|day|minute|screenful|test|case|format|verb|dialog|kernel)"

// Patterns that take in the spelling that is right as well would be no use here; those that are
// part of a longer American word have a boundary.
constexpr WordRule kRules[] = {
    // "Per".
    {"s a ", "\\b" UNITS " a " THINGS "s?\\b(?! at a time)", "per"},
    {"s an ", "\\b" UNITS " an " THINGS "\\b(?! at a time)", "per"},
    {"one a ", "\\bone a " THINGS "\\b(?! at a time)", "one per"},
    {"header a ", "\\bheader a " THINGS "\\b", "per"},
    {"program a ", "\\bprogram a " THINGS "\\b", "per"},
    {"purpose a ", "\\bpurpose a " THINGS "\\b", "per"},
    // Invalid.
    {"none",
     "\\b(?!there\\b)[a-z]+[,:]? (?:is|are|was|were) none\\b(?! of| at all| in| other|[-_,])",
     "invalid, unsupported, or \"is not a ...\""},
    // Requires.
    {"asks for", "\\basks for\\b", "requires, needs, requests"},
    {"ask for", "\\bask for\\b", "require, need, request"},
    {"asked for", "\\basked for\\b", "required, requested"},
    {"asking for", "\\basking for\\b", "requesting"},
    {"wants", "\\bwants\\b", "needs, requires"},
    {"want of", "\\b(?:for )?want of\\b", "lack of, \"out of memory\""},
    // Terms.
    {"nobody", "\\bnobody\\b", "name who, or say it in the passive"},
    {"established", "", "state the rule"},
    {"as ever", "\\bas ever\\b", "state the rule"},
    {"callers rely", "", "state the rule"},
    {"rely on it", "\\brely on it\\b", "state the rule"},
    {"against the clock", "\\bagainst the clock\\b", "counter-clockwise"},
    {"with the clock", "\\bwith the clock\\b", "clockwise"},
    {"in its place", "\\bin its place\\b", "in place, instead"},
    {"in their place", "\\bin their place\\b", "in place, instead"},
    {"nothing", "\\b(?:does|do|doing|did) nothing\\b(?! (?:but|else|more|other|with|about|for))",
     "is a no-op, has no effect"},
    {"false alarm", "", "false positive"},
    {"races that are", "", "false positives"},
    {"whatever", "\\bwhatever (?:its|their|it)\\b", "regardless of"},
    {"left out", "\\b(?:is|are) left out\\b", "is skipped, are skipped"},
    {"rows that are there", "", "the rows present"},
    {"its kin", "\\bits kin\\b", "related classes, related functions"},
    {"seldom", "\\bseldom\\b", "rarely"},
    {"in circles", "\\bround in circles\\b", "does not end"},
    {"cannot be had", "", "is not available"},
    {"beside", "\\bbeside (?:its|the|their) pixels\\b", "besides"},
    {"behind the", "\\bbehind the (?:end|last|first|start|header|value|pixels|row|sections)\\b",
     "after"},
    // American spelling.
    {"colour", "", "color"},
    {"grey", "grey(?!hound)", "gray"},
    {"licence", "", "license"},
    {"behaviour", "", "behavior"},
    {"favour", "", "favor"},
    {"honour", "", "honor"},
    {"neighbour", "", "neighbor"},
    {"centre", "", "center"},
    {"centring", "", "centering"},
    {"metre", "(?:milli|centi|kilo)?metres?(?![a-z])", "meter"},
    {"cancelled", "", "canceled"},
    {"cancelling", "", "canceling"},
    {"labelled", "", "labeled"},
    {"labelling", "", "labeling"},
    {"travelled", "", "traveled"},
    {"modelled", "", "modeled"},
    {"signalled", "", "signaled"},
    {"artefact", "", "artifact"},
    {"whilst", "\\bwhilst\\b", "while"},
    {"defence", "", "defense"},
    {"analys", "analys(?:e[ds]?|ers?|ing)(?![a-z])", "analyze"},
    {"initialis", "initialis(?:e|ing|ation|er)", "initialize"},
    {"optimis", "optimis(?:e|ing|ation)", "optimize"},
    {"vectoris", "vectoris(?:e|ing|ation)", "vectorize"},
    {"finalis", "finalis(?:e|ing|ation)", "finalize"},
    {"recognis", "recognis(?:e|ing|able)", "recognize"},
    {"organis", "organis(?:e|ing|ation)", "organize"},
    {"summaris", "summaris(?:e|ing)", "summarize"},
    {"maximis", "maximis(?:e|ing|ation)", "maximize"},
    {"minimis", "minimis(?:e|ing|ation)", "minimize"},
    {"normalis", "normalis(?:e|ing|ation)", "normalize"},
    {"serialis", "serialis(?:e|ing|ation)", "serialize"},
    {"synchronis", "synchronis(?:e|ing|ation)", "synchronize"},
    {"quantis", "quantis(?:e|ing|ation)", "quantize"},
    {"rasteris", "rasteris(?:e[drs]?|ing|ation)(?![a-z])", "rasterize"},
    {"generalis", "generalis(?:e|ing|ation)", "generalize"},
    {"specialis", "specialis(?:e|ing|ation)", "specialize"},
    {"utilis", "utilis(?:e|ing|ation)", "utilize"},
    {"equalis", "equalis(?:e|ing|ation)", "equalize"},
    {"localis", "localis(?:e|ing|ation)", "localize"},
    {"customis", "customis(?:e|ing|ation)", "customize"},
    {"capitalis", "capitalis(?:e|ing|ation)", "capitalize"},
    {"visualis", "visualis(?:e|ing|ation)", "visualize"},
};

#undef UNITS
#undef THINGS

}  // namespace

std::span<const WordRule> WordRules() {
  return kRules;
}

}  // namespace rasterkit::test
