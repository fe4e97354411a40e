#include <algorithm>
#include <array>
#include <map>
#include <memory>

#include <expat.h>
#include <fmt/core.h>

#include <rasterkit/placement/aux_xml.h>
#include <rasterkit/placement/geo_tags.h>
#include <rasterkit/placement/six_numbers.h>
#include <rasterkit/runtime/errors.h>
#include <rasterkit/runtime/text.h>

namespace rasterkit::detail {
namespace {

constexpr size_t kDeepest = 64;
constexpr size_t kMostControlPoints = 1'000'000;

struct ParserEnd {
  void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
};

using Parser = std::unique_ptr<XML_ParserStruct, ParserEnd>;

std::string Attribute(const XML_Char** attributes, std::string_view name) {
  for (; *attributes != nullptr; attributes += 2) {
    if (attributes[0] == name) return attributes[1];
  }
  return "";
}

/// Numbers between commas or blanks; stops at the first word that is not a number.
std::vector<double> NumbersIn(std::string_view text, size_t most) {
  constexpr std::string_view kBetween = " \t\r\n,";
  std::vector<double> numbers;
  while (numbers.size() < most) {
    const size_t start = text.find_first_not_of(kBetween);
    if (start == std::string_view::npos) break;
    text.remove_prefix(start);
    const std::string_view word = text.substr(0, text.find_first_of(kBetween));
    const std::optional<double> number = ParseDecimal(word);
    if (!number) break;
    numbers.push_back(*number);
    text.remove_prefix(word.size());
  }
  return numbers;
}

/// Fills an AuxXml while the parser walks the file.
class Reader {
 public:
  explicit Reader(XML_Parser parser) : parser_(parser) {}

  static void XMLCALL Start(void* self, const XML_Char* name, const XML_Char** attributes) {
    static_cast<Reader*>(self)->StartElement(name, attributes);
  }
  static void XMLCALL End(void* self, const XML_Char*) { static_cast<Reader*>(self)->EndElement(); }
  static void XMLCALL Text(void* self, const XML_Char* text, int count) {
    static_cast<Reader*>(self)->AddText(text, count);
  }
  static void XMLCALL DocumentType(void* self, const XML_Char*, const XML_Char*, const XML_Char*,
                                   int) {
    static_cast<Reader*>(self)->Stop("has a document type");
  }

  AuxXml Take() {
    if (result_.wkt.empty()) result_.wkt = wktOfPoints_;
    TakeRationalModel();
    return std::move(result_);
  }

  std::string whyStopped;

 private:
  unsigned long Line() const { return XML_GetCurrentLineNumber(parser_); }
  void Stop(const char* reason) {
    if (whyStopped.empty()) whyStopped = fmt::format("line {}: {}", Line(), reason);
    XML_StopParser(parser_, XML_FALSE);
  }
  void AddFault(const std::string& reason) {
    constexpr size_t kMostFaults = 20;
    if (result_.faults.size() < kMostFaults) {
      result_.faults.push_back(fmt::format("line {}: {}", Line(), reason));
    }
  }

  bool IsIn(std::initializer_list<std::string_view> path) const {
    return std::equal(path_.begin(), path_.end(), path.begin(), path.end());
  }

  void StartElement(const XML_Char* name, const XML_Char** attributes) {
    if (path_.size() == kDeepest) return Stop("elements are nested too deeply");
    path_.emplace_back(name);
    text_.clear();
    if (IsIn({"PAMDataset", "GCPList"})) {
      wktOfPoints_ = Trim(Attribute(attributes, "Projection"));
    } else if (IsIn({"PAMDataset", "GCPList", "GCP"})) {
      AddControlPoint(attributes);
    } else if (IsIn({"PAMDataset", "Metadata"})) {
      isRational_ = Attribute(attributes, "domain") == "RPC";
      if (!isRational_) AddOther(name);
    } else if (IsIn({"PAMDataset", "Metadata", "MDI"})) {
      key_ = Attribute(attributes, "key");
    } else if (IsOther()) {
      AddOther(name);
    }
    // The date of a moving system, and notes on a control point.
    for (const char* attribute : {"coordinateEpoch", "Info"}) {
      if (!Attribute(attributes, attribute).empty()) AddOther(attribute);
    }
    takesText_ = IsIn({"PAMDataset", "SRS"}) || IsIn({"PAMDataset", "GeoTransform"}) ||
                 IsIn({"PAMDataset", "PAMRasterBand", "NoDataValue"}) ||
                 (isRational_ && IsIn({"PAMDataset", "Metadata", "MDI"}));
  }

  /// True for an element that no other part of the reader uses, in one that it knows.
  bool IsOther() const {
    const bool isPart = path_.size() == 2 && path_.front() == "PAMDataset";
    const bool isOfBand = path_.size() == 3 && path_[1] == "PAMRasterBand";
    if (isOfBand) return path_.back() != "NoDataValue";
    return isPart && path_.back() != "SRS" && path_.back() != "GeoTransform" &&
           path_.back() != "PAMRasterBand";
  }

  void AddOther(const std::string& name) {
    constexpr size_t kMostOthers = 20;
    auto& others = result_.others;
    const bool isNew = std::find(others.begin(), others.end(), name) == others.end();
    if (isNew && others.size() < kMostOthers) others.push_back(name);
  }

  void EndElement() {
    if (takesText_) TakeText();
    takesText_ = false;
    text_.clear();
    if (!path_.empty()) path_.pop_back();
  }

  void AddText(const XML_Char* text, int count) {
    if (takesText_) text_.append(text, static_cast<size_t>(count));
  }

  void TakeText() {
    const std::string& name = path_.back();
    if (name == "SRS") {
      result_.wkt = Trim(text_);
    } else if (name == "GeoTransform") {
      TakeTransform();
    } else if (name == "NoDataValue") {
      result_.noData.push_back(Trim(text_));
    } else {
      rational_[key_] = text_;
    }
  }

  /// x, x per column, x per row, y, y per column, y per row of the top left corner.
  void TakeTransform() {
    constexpr size_t kCount = 6;
    const std::vector<double> n = NumbersIn(text_, kCount);
    if (n.size() < kCount) {
      return AddFault(fmt::format("the transformation has {} of 6 numbers", n.size()));
    }
    Affine affine{n[1], n[4], n[2], n[5], n[0], n[3]};
    const MapPoint center = affine.At(0.5, 0.5);
    affine.x = center.x;
    affine.y = center.y;
    if (!PlacesPixels(affine)) return AddFault("the transformation gives a pixel no area");
    result_.affine = affine;
  }

  void AddControlPoint(const XML_Char** attributes) {
    if (result_.controlPoints.size() == kMostControlPoints) return Stop("too many control points");
    const auto number = [&](const char* name) {
      return ParseDecimal(Trim(Attribute(attributes, name)));
    };
    const auto column = number("Pixel"), row = number("Line"), x = number("X"), y = number("Y");
    if (!column || !row || !x || !y) return AddFault("a control point has no finite numbers");
    result_.controlPoints.push_back({*column, *row, 0, *x, *y, number("Z").value_or(0)});
  }

  /// In the order of the tag.
  void TakeRationalModel() {
    constexpr std::array kSingle = {"LINE_OFF",   "SAMP_OFF",    "LAT_OFF",    "LONG_OFF",
                                    "HEIGHT_OFF", "LINE_SCALE",  "SAMP_SCALE", "LAT_SCALE",
                                    "LONG_SCALE", "HEIGHT_SCALE"};
    constexpr std::array kLists = {"LINE_NUM_COEFF", "LINE_DEN_COEFF", "SAMP_NUM_COEFF",
                                   "SAMP_DEN_COEFF"};
    constexpr size_t kCoefficients = 20;
    if (rational_.empty()) return;
    RationalModel model;
    // -1: the error is unknown.
    for (const char* key : {"ERR_BIAS", "ERR_RAND"}) {
      const std::vector<double> numbers = NumbersIn(rational_[key], 1);
      model.push_back(numbers.empty() ? -1 : numbers[0]);
    }
    for (const char* key : kSingle) {
      const std::vector<double> numbers = NumbersIn(rational_[key], 1);
      model.insert(model.end(), numbers.begin(), numbers.end());
    }
    for (const char* key : kLists) {
      const std::vector<double> numbers = NumbersIn(rational_[key], kCoefficients);
      if (numbers.size() != kCoefficients) model.clear();
      model.insert(model.end(), numbers.begin(), numbers.end());
    }
    if (model.size() == kRationalNumbers) {
      result_.rationalModel = std::move(model);
    } else {
      result_.faults.emplace_back("the rational model lacks numbers");
    }
  }

  XML_Parser parser_;
  AuxXml result_;
  std::vector<std::string> path_;
  std::string text_, key_, wktOfPoints_;
  bool takesText_ = false, isRational_ = false;
  std::map<std::string, std::string> rational_;
};

}  // namespace

AuxXml ParseAuxXml(std::string_view text) {
  if (text.size() > kLongestAuxXml) throw FormatError("is too long");
  const Parser parser(XML_ParserCreate(nullptr));
  if (!parser) throw std::bad_alloc();
  Reader reader(parser.get());
  XML_SetUserData(parser.get(), &reader);
  XML_SetElementHandler(parser.get(), Reader::Start, Reader::End);
  XML_SetCharacterDataHandler(parser.get(), Reader::Text);
  XML_SetStartDoctypeDeclHandler(parser.get(), Reader::DocumentType);
  const auto size = static_cast<int>(text.size());
  if (XML_Parse(parser.get(), text.data(), size, XML_TRUE) != XML_STATUS_OK) {
    if (!reader.whyStopped.empty()) throw FormatError(reader.whyStopped);
    throw FormatError(fmt::format("line {}: {}", XML_GetCurrentLineNumber(parser.get()),
                                  XML_ErrorString(XML_GetErrorCode(parser.get()))));
  }
  return reader.Take();
}

}  // namespace rasterkit::detail
