"""The workflow that runs the kit on hosted Macs has the form of one, and names what is there."""

import os
import re
import unittest
from pathlib import Path

import yaml

PROJECT = Path(__file__).resolve().parents[2]
WORKFLOW = PROJECT / ".github/workflows/mac.yml"


class Workflow(unittest.TestCase):
    def setUp(self):
        self.text = WORKFLOW.read_text()
        self.jobs = yaml.safe_load(self.text)["jobs"]

    def steps(self, job, key):
        return [step[key] for step in self.jobs[job]["steps"] if key in step]

    def artifact(self, job, action):
        found, = (step["with"] for step in self.jobs[job]["steps"]
                  if step.get("uses", "").startswith(f"actions/{action}@") and not step.get("if"))
        return found

    def test_gives_every_step_either_a_command_or_an_action(self):
        for name, job in self.jobs.items():
            self.assertIn("runs-on", job)
            for step in job["steps"]:
                self.assertEqual(1, len({"run", "uses"} & step.keys()), (name, step))

    def test_runs_scripts_that_are_there(self):
        named = re.findall(r"scripts/[\w-]+", "\n".join(self.steps("kit", "run")))

        self.assertEqual(["scripts/test", "scripts/mac-kit"], named)
        for script in named:
            self.assertTrue(os.access(PROJECT / script, os.X_OK), script)

    def test_runs_what_the_kit_has_on_a_mac(self):
        self.assertEqual(["tar -xzf Karno-mac-kit.tar.gz", "./prove"], self.steps("mac", "run"))
        self.assertTrue(os.access(PROJECT / "tools/mac_kit/prove", os.X_OK))

    def test_hands_the_kit_on_from_where_the_script_puts_it(self):
        given = self.artifact("kit", "upload-artifact")

        self.assertEqual("kit", self.jobs["mac"]["needs"])
        self.assertEqual(given["name"], self.artifact("mac", "download-artifact")["name"])
        self.assertIn(given["path"], (PROJECT / "scripts/mac-kit").read_text())

    def test_has_two_images_of_each_processor(self):
        images = self.jobs["mac"]["strategy"]["matrix"]["image"]

        of_intel = [image for image in images if image.endswith("-intel")]
        self.assertEqual((2, 4), (len(of_intel), len(set(images))))
        self.assertNotIn("macos-", self.text.replace(str(images)[1:-1].replace("'", ""), ""))

    def test_says_that_no_runner_has_had_it(self):
        self.assertIn("checked for its form", self.text)


if __name__ == "__main__":
    unittest.main()
