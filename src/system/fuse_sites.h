#pragma once
#include <string>

namespace karno {

// Where macFUSE is on the network. The bundle's Info.plist names the hosts; without an entry the public ones
// count.

// The home page of the web site from which users download macFUSE, under "KarnoMacFUSESite".
std::string fuseDownloadSite();

// The record of the latest release in the GitHub REST API, whose host is under "KarnoReleasesHost".
std::string fuseLatestReleaseURL();

}  // namespace karno
