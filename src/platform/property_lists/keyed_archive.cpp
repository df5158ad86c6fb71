#include "platform/property_lists/keyed_archive.h"

#include <array>

#include "platform/property_lists/binary_list.h"
#include "platform/property_lists/errors.h"
#include "platform/property_lists/limits.h"
#include "platform/property_lists/scalar_texts.h"

namespace karno::platform::lists {
namespace {

enum class ArchivedClass { Dictionary, Array, String, Data, Date };

struct KnownClass {
  std::string_view name;
  ArchivedClass kind;
};

constexpr std::array kKnownClasses = {
    KnownClass{"NSDictionary", ArchivedClass::Dictionary},
    KnownClass{"NSMutableDictionary", ArchivedClass::Dictionary},
    KnownClass{"NSArray", ArchivedClass::Array},
    KnownClass{"NSMutableArray", ArchivedClass::Array},
    KnownClass{"NSString", ArchivedClass::String},
    KnownClass{"NSMutableString", ArchivedClass::String},
    KnownClass{"NSData", ArchivedClass::Data},
    KnownClass{"NSMutableData", ArchivedClass::Data},
    KnownClass{"NSDate", ArchivedClass::Date},
};

// The entry of that name and type.
template <class T>
const T& entry(const Value::Dictionary& dictionary, std::string_view key, const char* otherwise) {
  const T* const value = entryOf<T>(dictionary, key);
  if (value == nullptr) {
    throw Damage(otherwise);
  }
  return *value;
}

Date dateOf(double secondsSinceReference) {
  const auto date = dateSince1970(secondsSinceReference + kReferenceDateSeconds);
  if (!date || *date == Date::min() || *date == Date::max()) {
    throw Damage("a date is out of range");
  }
  return *date;
}

class Unfolder {
 public:
  explicit Unfolder(const Value::Dictionary& archive)
      : objects_(entry<Value::Array>(archive, "$objects", "it has no objects")) {}

  Value::Dictionary root(const Value::Dictionary& archive) {
    const auto& top = entry<Value::Dictionary>(archive, "$top", "it has no root");
    const auto& reference = entry<Value::Dictionary>(top, "root", "it has no root");
    Value value = unfold(referencedBy(reference), 1);
    const auto* const dictionary = value.get<Value::Dictionary>();
    if (dictionary == nullptr) {
      throw Damage("its root is no dictionary");
    }
    return *dictionary;
  }

 private:
  const Value& referencedBy(const Value::Dictionary& reference) const {
    const std::int64_t index = entry<std::int64_t>(reference, kReferenceKey, "a reference is damaged");
    // The first object stands for nil.
    if (reference.size() != 1 || index < 1 || index >= static_cast<std::int64_t>(objects_.size())) {
      throw Damage("a reference points to no object");
    }
    return objects_[static_cast<std::size_t>(index)];
  }

  // Strings, numbers and data of fixed content lie in the archive as themselves, all others as dictionaries.
  Value unfold(const Value& object, int depth) {
    const auto* const coded = object.get<Value::Dictionary>();
    if (coded == nullptr) {
      if (object.get<Value::Array>() != nullptr) {
        throw Damage("an object has no class");
      }
      spend(contentBytes(object));
      return object;
    }
    switch (classOf(*coded)) {
      case ArchivedClass::Dictionary:
        return unfoldDictionary(*coded, depth);
      case ArchivedClass::Array:
        return unfoldArray(*coded, depth);
      case ArchivedClass::String:
        return unfold(Value(entry<std::string>(*coded, "NS.string", "a string is damaged")), depth);
      case ArchivedClass::Data:
        return unfold(Value(entry<Value::Data>(*coded, "NS.data", "data is damaged")), depth);
      case ArchivedClass::Date:
        return unfold(dateOf(entry<double>(*coded, "NS.time", "a date is damaged")), depth);
    }
    throw Damage("an object has no class");
  }

  ArchivedClass classOf(const Value::Dictionary& coded) const {
    const auto& reference = entry<Value::Dictionary>(coded, "$class", "an object has no class");
    const auto* const description = referencedBy(reference).get<Value::Dictionary>();
    if (description == nullptr) {
      throw Damage("a class is damaged");
    }
    const auto& name = entry<std::string>(*description, "$classname", "a class is damaged");
    for (const KnownClass& known : kKnownClasses) {
      if (known.name == name) {
        return known.kind;
      }
    }
    throw Damage("it holds an object of another class than property lists have");
  }

  void spend(std::size_t bytes) {
    if (!budget_.spend(bytes)) {
      throw Damage("it unfolds to too much");
    }
  }

  static std::size_t contentBytes(const Value& leaf) {
    const auto* const text = leaf.get<std::string>();
    const auto* const data = leaf.get<Value::Data>();
    return text != nullptr ? text->size() : data != nullptr ? data->size() : 0;
  }

  Value::Array elements(const Value::Dictionary& coded, std::string_view key, int depth) {
    if (depth > kMaxValueDepth) {
      throw Damage("it is nested too deeply");
    }
    spend(0);
    Value::Array values;
    for (const Value& element : entry<Value::Array>(coded, key, "a collection is damaged")) {
      const auto* const reference = element.get<Value::Dictionary>();
      if (reference == nullptr) {
        throw Damage("a collection is damaged");
      }
      values.push_back(unfold(referencedBy(*reference), depth + 1));
    }
    return values;
  }

  Value unfoldArray(const Value::Dictionary& coded, int depth) {
    return Value(elements(coded, "NS.objects", depth));
  }

  Value unfoldDictionary(const Value::Dictionary& coded, int depth) {
    const Value::Array keys = elements(coded, "NS.keys", depth);
    Value::Array values = elements(coded, "NS.objects", depth);
    if (keys.size() != values.size()) {
      throw Damage("a dictionary has not as many keys as objects");
    }
    Value::Dictionary dictionary;
    for (std::size_t index = 0; index < keys.size(); ++index) {
      const auto* const key = keys[index].get<std::string>();
      if (key == nullptr) {
        throw Damage("a key is no string");
      }
      dictionary.insert_or_assign(*key, std::move(values[index]));
    }
    return Value(std::move(dictionary));
  }

  const Value::Array& objects_;
  UnfoldingBudget budget_;
};

}  // namespace

Result<Value::Dictionary> unfoldKeyedArchive(const Value& archive) {
  try {
    const auto* const dictionary = archive.get<Value::Dictionary>();
    if (dictionary == nullptr ||
        entry<std::string>(*dictionary, "$archiver", "it is none") != "NSKeyedArchiver") {
      return unreadableArchive("it is none");
    }
    return Unfolder(*dictionary).root(*dictionary);
  } catch (const Damage& damage) {
    return unreadableArchive(damage.what());
  }
}

}  // namespace karno::platform::lists
