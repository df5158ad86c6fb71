#pragma once
#include <pugixml.hpp>
#include <string>

#include "karno-appcast/archives/release_folder.h"
#include "karno-appcast/feed/feed.h"
#include "karno-appcast/feed/feed_names.h"

// Fills one item of a feed. Elements and attributes that are not named here are never touched.
namespace karno::appcast {

// What the archive's bundle says of itself.
void writeFacts(pugi::xml_node item, const FeedNames& names, const Release& release);

void writeWishes(pugi::xml_node item, const FeedNames& names, const ItemWishes& wishes);

// Empty: any.
void writeMinimumUpdate(pugi::xml_node item, const FeedNames& names, const std::string& version);

// Leaves what is there where the release has none.
void writeNotes(pugi::xml_node item, const FeedNames& names, const Release& release);

// The archive's place on the server.
void writeAddress(pugi::xml_node item, const std::string& url);

struct SignedBytes {
  std::string signature;
  std::uint64_t length = 0;
};
void writeSignature(pugi::xml_node item, const FeedNames& names, const SignedBytes& bytes);

}  // namespace karno::appcast
