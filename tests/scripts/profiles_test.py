"""The profiles in docs/examples have the form that an MDM server takes, and say what docs/administrators.md says."""

import plistlib
import re
import unittest
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
EXAMPLES = PROJECT / "docs/examples"
UUID = r"[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-[0-9A-F]{12}"
# The types of their payloads, and what is said of each kind besides.
TYPES = {
    "karno-admin": ["com.apple.ManagedClient.preferences"],
    "karno-apple-events": ["com.apple.TCC.configuration-profile-policy"],
    "karno-login-item": ["com.apple.servicemanagement"],
    "macfuse-extensions": ["com.apple.syspolicy.kernel-extension-policy", "com.apple.system-extension-policy"],
}
COMMON = {"PayloadDisplayName", "PayloadIdentifier", "PayloadType", "PayloadUUID", "PayloadVersion"}


def launchers_identifier():
    return plistlib.loads((PROJECT / "resources/Info.plist.in").read_bytes())["CFBundleIdentifier"]


class Profiles(unittest.TestCase):
    def setUp(self):
        self.profiles = {path.stem: plistlib.loads(path.read_bytes())
                         for path in sorted(EXAMPLES.glob("*.mobileconfig"))}
        self.document = (PROJECT / "docs/administrators.md").read_text()

    def payloads(self, name):
        return self.profiles[name]["PayloadContent"]

    def own_part(self, name, index=0):
        """What the payload says beyond what every payload has."""
        return {key: value for key, value in self.payloads(name)[index].items() if key not in COMMON}

    def test_have_payloads_of_known_types(self):
        self.assertEqual(TYPES, {name: [payload["PayloadType"] for payload in profile["PayloadContent"]]
                                 for name, profile in self.profiles.items()})

    def test_are_for_the_whole_mac_and_name_an_organisation(self):
        for name, profile in self.profiles.items():
            with self.subTest(profile=name):
                self.assertEqual(COMMON | {"PayloadContent", "PayloadDescription", "PayloadOrganization", "PayloadScope"},
                                 profile.keys())
                self.assertEqual(("Configuration", "System", 1, "YOUR ORGANISATION"),
                                 tuple(profile[f"Payload{key}"] for key in ("Type", "Scope", "Version", "Organization")))

    def test_have_identifiers_and_numbers_of_their_own(self):
        parts = [part for profile in self.profiles.values() for part in [profile, *profile["PayloadContent"]]]
        for key in ("PayloadIdentifier", "PayloadUUID"):
            self.assertEqual(len(parts), len({part[key] for part in parts}), key)
        for part in parts:
            self.assertRegex(part["PayloadUUID"], rf"\A{UUID}\Z")
            self.assertTrue(part["PayloadDisplayName"])
            self.assertEqual(1, part["PayloadVersion"])
        for profile in self.profiles.values():
            for payload in profile["PayloadContent"]:
                self.assertTrue(payload["PayloadIdentifier"].startswith(f"{profile['PayloadIdentifier']}."))
                self.assertLessEqual(COMMON, payload.keys())

    def test_allow_the_login_agent_and_the_launcher_by_their_names(self):
        agent = plistlib.loads((EXAMPLES / "it.vantul.karno.login.plist").read_bytes())

        rules = self.own_part("karno-login-item")["Rules"]

        self.assertEqual([("Label", agent["Label"]), ("BundleIdentifier", launchers_identifier())],
                         [(rule["RuleType"], rule["RuleValue"]) for rule in rules])
        self.assertEqual([launchers_identifier()], agent["AssociatedBundleIdentifiers"])

    def test_let_the_launcher_ask_the_finder_alone(self):
        services = self.own_part("karno-apple-events")["Services"]

        entry, = services.pop("AppleEvents")
        self.assertEqual({}, services)
        self.assertEqual({
            "Identifier": launchers_identifier(), "IdentifierType": "bundleID", "Allowed": True,
            "CodeRequirement": 'WHAT FOLLOWS "designated =>"',
            "AEReceiverIdentifier": "com.apple.finder", "AEReceiverIdentifierType": "bundleID",
            "AEReceiverCodeRequirement": 'identifier "com.apple.finder" and anchor apple'}, entry)

    def test_allow_extensions_of_a_team_that_is_filled_in(self):
        allowed = {"AllowUserOverrides": True, "AllowedTeamIdentifiers": ["TEAM OF MACFUSE"]}

        self.assertEqual([allowed, allowed], [self.own_part("macfuse-extensions", index) for index in (0, 1)])

    def test_allow_nothing_before_they_are_filled_in(self):
        # A team is ten capitals and digits, and a requirement names a team.
        for name in self.profiles:
            text = (EXAMPLES / f"{name}.mobileconfig").read_text()
            self.assertNotRegex(text, r"<string>[0-9A-Z]{10}</string>|subject\.OU", name)

    def test_stand_in_the_table_of_the_document(self):
        rows = re.findall(r"^\| \[([\w-]+)\]\(examples/([\w-]+)\.mobileconfig\) \|", self.document, re.MULTILINE)

        self.assertEqual(sorted((name, name) for name in self.profiles), sorted(rows))

    def test_have_a_fragment_in_the_document_that_is_one(self):
        """The payload for App Management."""
        fragment, = (block for block in re.findall(r"```xml\n(.*?)```", self.document, re.DOTALL)
                     if "SystemPolicyAppBundles" in block)

        payload = plistlib.loads(f'<plist version="1.0"><dict>{fragment}</dict></plist>'.encode())

        entry, = payload["Services"]["SystemPolicyAppBundles"]
        self.assertEqual(TYPES["karno-apple-events"], [payload["PayloadType"]])
        self.assertEqual(launchers_identifier(), entry["Identifier"])
        self.assertEqual("Allow", entry["Authorization"])


if __name__ == "__main__":
    unittest.main()
