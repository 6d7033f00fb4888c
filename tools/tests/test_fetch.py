"""What is fetched is checked, asked for again where that may help, and when it fails the true cause is told."""

import contextlib
import hashlib
import io
import os
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

sys.path.insert(0, os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
import clients  # noqa: E402
import fetch  # noqa: E402
import packages  # noqa: E402
import sources  # noqa: E402

NPM_CERTIFICATE = """npm warn Unknown user config "nodedir".
npm error code SELF_SIGNED_CERT_IN_CHAIN
npm error errno SELF_SIGNED_CERT_IN_CHAIN
npm error request to https://one.invalid/why failed, reason: self-signed certificate in certificate chain
npm error A complete log of this run can be found in: /somewhere/debug-0.log
"""
PIP_OFFLINE = """WARNING: Retrying (Retry(total=0)) after connection broken by 'NewConnectionError('Name or service not known')': /a/
ERROR: Could not find a version that satisfies the requirement a==1 (from versions: none)
ERROR: No matching distribution found for a==1
"""


class Client(unittest.TestCase):
    """With a client that says what it is told to, one answer a call."""

    def run_client(self, client, *answers):
        self.calls = []

        def start(added):
            self.calls.append(added)
            text = answers[len(self.calls) - 1]
            return subprocess.CompletedProcess(client, 1 if text else 0, text)
        with contextlib.redirect_stderr(io.StringIO()):
            clients.fetch(client, "what is wanted", start, pauses=(0, 0))

    def failure(self, client, *answers):
        with self.assertRaises(clients.Failure) as raised:
            self.run_client(client, *answers)
        return str(raised.exception)

    def test_what_fails_in_passing_is_asked_for_again(self):
        self.run_client("npm", "npm error code ECONNRESET", "npm error code ETIMEDOUT", "")
        self.assertEqual(len(self.calls), 3)

    def test_after_the_last_attempt_the_client_s_own_words_are_told(self):
        text = self.failure("npm", *["npm error code ECONNREFUSED\nnpm error syscall connect"] * 3)
        self.assertEqual(len(self.calls), 3)
        self.assertIn("npm error code ECONNREFUSED", text)
        self.assertIn("HTTPS_PROXY", text)

    def test_a_certificate_that_is_not_trusted_is_named_at_once_with_the_remedy(self):
        text = self.failure("npm", NPM_CERTIFICATE)
        self.assertEqual(len(self.calls), 1)
        for part in ("what is wanted", "SELF_SIGNED_CERT_IN_CHAIN", "update-ca-certificates", "NODE_EXTRA_CA_CERTS"):
            self.assertIn(part, text)
        for part in ("complete log", "nodedir"):
            self.assertNotIn(part, text)
        self.assertIn("PIP_CERT", self.failure("pip", "SSLError('[SSL: CERTIFICATE_VERIFY_FAILED]')"))
        self.assertIn("CARGO_HTTP_CAINFO", self.failure("cargo", "[60] SSL certificate problem: unable to get local issuer"))

    def test_a_network_that_is_away_is_not_taken_for_a_package_that_is_not_there(self):
        self.assertIn("cannot be reached", self.failure("pip", *[PIP_OFFLINE] * 3))
        self.assertIn("does not provide it", self.failure("pip", PIP_OFFLINE.partition("\n")[2]))

    def test_words_that_no_cause_is_known_for_are_told_too(self):
        self.assertIn("a new way to fail", self.failure("cargo", *["a new way to fail"] * 3))

    def test_the_system_s_certificates_are_given_where_nothing_is_set(self):
        with tempfile.NamedTemporaryFile() as bundle, mock.patch.object(clients, "BUNDLES", ("/nowhere", bundle.name)):
            both = {"NODE_EXTRA_CA_CERTS": bundle.name, "REQUESTS_CA_BUNDLE": bundle.name}
            self.assertEqual(clients.certificates({}), both)
            self.assertEqual(clients.certificates({"NODE_EXTRA_CA_CERTS": "mine", "CURL_CA_BUNDLE": "mine"}), {})
        with mock.patch.object(clients, "BUNDLES", ("/nowhere",)):
            self.assertEqual(clients.certificates({}), {})


class Sources(unittest.TestCase):
    """With two libraries of a file each, and clients that lay down what they are told to."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.into = folder.name
        self.offered, self.asked = {"one": b"ONE", "two": b"TWO"}, []
        replaced = {"hashes": lambda name: {"src/a.c": hashlib.sha256(name.upper().encode()).hexdigest()},
                    "SOURCES": {"one": sources.Source("one-1", "cargo", "x/one"), "two": sources.Source("two-2", "cargo", "two")},
                    "CLIENTS": {"cargo": self.client}}
        for name, value in replaced.items():
            patch = mock.patch.object(sources, name, value)
            patch.start()
            self.addCleanup(patch.stop)

    def client(self, work):
        self.asked.append(work)
        for name, source in sources.SOURCES.items():
            self.write(os.path.join(work, source.inside, "src", "a.c"), self.offered[name])
        return work

    def write(self, path, data):
        os.makedirs(os.path.dirname(path), exist_ok=True)
        packages.write(path, data)

    def fetch(self):
        sources.fetch(("one", "two"), self.into)

    def test_both_are_fetched_in_one_call_and_not_again(self):
        self.assertEqual(sources.missing(("one", "two"), self.into), ["one", "two"])
        self.fetch()
        self.fetch()
        self.assertEqual(len(self.asked), 1)
        self.assertEqual(sources.missing(("one", "two"), self.into), [])
        self.assertEqual(packages.read(os.path.join(self.into, "two-2", "src", "a.c")), b"TWO")
        self.assertEqual(sorted(os.listdir(self.into)), ["lock", "one-1", "two-2"])

    def test_a_file_that_was_changed_is_fetched_again(self):
        self.fetch()
        self.write(os.path.join(self.into, "one-1", "src", "a.c"), b"changed")
        self.fetch()
        self.assertEqual(len(self.asked), 2)
        self.assertEqual(packages.read(os.path.join(self.into, "one-1", "src", "a.c")), b"ONE")

    def test_what_is_not_the_pinned_file_is_refused_and_not_laid_down(self):
        self.offered["two"] = b"another"
        with self.assertRaisesRegex(clients.Failure, "(?s)two, src/a.c is not the file it should be.*two-2 by hand"):
            self.fetch()
        self.assertFalse(os.path.exists(os.path.join(self.into, "two-2")))

    def test_without_the_client_the_remedy_is_told(self):
        with mock.patch.object(sources, "CLIENTS", {"cargo": sources._crates}), \
                mock.patch.object(sources.shutil, "which", lambda *a, **k: None):
            with self.assertRaisesRegex(clients.Failure, "(?s)apt-get install cargo.*by hand"):
                self.fetch()


class Parts(unittest.TestCase):
    def run_fetch(self, *arguments):
        self.done, errors = [], io.StringIO()

        def failing():
            raise clients.Failure("why")
        parts = {"first": failing, "second": lambda: self.done.append("second")}
        with mock.patch.object(fetch, "PARTS", parts), contextlib.redirect_stderr(errors):
            return fetch.main(list(arguments)), errors.getvalue()

    def test_what_fails_is_told_and_the_others_are_fetched_all_the_same(self):
        self.assertEqual(self.run_fetch(), (1, "fetch: why\n"))
        self.assertEqual(self.done, ["second"])

    def test_one_part_alone(self):
        self.assertEqual(self.run_fetch("second"), (0, ""))

    def test_a_part_that_is_not_known_is_refused(self):
        self.assertEqual(self.run_fetch("third")[0], 2)


if __name__ == "__main__":
    unittest.main()
