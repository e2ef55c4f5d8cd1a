"""A connection to a host that is a folder with a system in it: its host variable ansible_host."""

import os
import shutil
import subprocess

from ansible.errors import AnsibleConnectionFailure
from ansible.plugins.connection import ConnectionBase

DOCUMENTATION = """
name: tree
short_description: Runs commands in a folder that has a system in it
description: For tests.
options:
  remote_addr:
    description: The folder.
    vars: [{name: ansible_host}]
"""


class Connection(ConnectionBase):
    transport = "tree"
    has_pipelining = True

    def _connect(self):
        self.tree = self.get_option("remote_addr")
        if not os.path.exists(os.path.join(self.tree, "bin/sh")):
            raise AnsibleConnectionFailure(f"there is no system in {self.tree}")
        return self

    def close(self):
        pass

    def exec_command(self, cmd, in_data=None, sudoable=True):
        super().exec_command(cmd, in_data=in_data, sudoable=sudoable)
        done = subprocess.run(["chroot", self.tree, "env", "--ignore-environment", "HOME=/root", "LC_ALL=C.UTF-8",
                               "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "/bin/sh", "-c", cmd],
                              input=in_data, capture_output=True, check=False)
        return done.returncode, done.stdout, done.stderr

    def put_file(self, in_path, out_path):
        shutil.copyfile(in_path, self.tree + out_path)

    def fetch_file(self, in_path, out_path):
        shutil.copyfile(self.tree + in_path, out_path)
