#!/usr/bin/python3
"""An Ansible module that makes a profile of the codec's settings true. `vantrelctl apply` does the work and decides what
is a change; what is here carries its words to Ansible."""

DOCUMENTATION = r"""
module: vantrel_settings
short_description: Settings of the Vantrel codec
description:
  - Makes a profile of settings true for users, through the command C(vantrelctl), which has to be installed.
  - A user whose settings can't be changed doesn't keep the others from theirs; the task fails when all have been tried.
options:
  profile:
    description:
      - The settings as they are stored, key by key, as C(vantrelctl export --format json) prints them. Keys that it
        doesn't name stay as they are.
    type: dict
    required: true
  users:
    description: Whose settings. The user that the task runs as needs no rights; for others it has to be root.
    type: list
    elements: str
    default: the user that the task runs as
attributes:
  check_mode:
    support: full
    description: Where C(vantrelctl) isn't installed yet, all is taken as changed.
  diff_mode:
    support: full
"""

EXAMPLES = r"""
- name: No 8-bit formats, and one encoder thread, for those who render
  vantrel_settings:
    users: [ada, ben]
    profile:
      FormatRGB8: false
      FormatYUV8: false
      MaxEncodeThreads: 0
"""

RETURN = r"""
users:
  description: For each user what C(vantrelctl apply --json) printed.
  type: dict
  returned: always
"""

import json
import os
import pwd

from ansible.module_utils.basic import AnsibleModule


def user_now():
    return pwd.getpwuid(os.geteuid()).pw_name


def command_line(user, path, options):
    """The words that apply a profile from standard input as that user, with nothing of this one's environment."""
    words = ["env", "--ignore-environment", f"PATH={os.environ['PATH']}", "LC_ALL=C.UTF-8", path, "apply", "-", "--json",
             *options]
    return words if user == user_now() else ["runuser", f"--user={user}", "--", *words]


def settings(changes, side):
    """One side of a diff."""
    return "".join(f"{change['key']}: {json.dumps(change[side], ensure_ascii=False)}\n" for change in changes
                   if change[side] is not None)


def main():
    module = AnsibleModule({"profile": {"type": "dict", "required": True},
                            "users": {"type": "list", "elements": "str"}}, supports_check_mode=True)
    path = module.get_bin_path("vantrelctl", required=not module.check_mode)
    if not path:
        module.warn("vantrelctl isn't installed yet, so what it would change isn't known")
        module.exit_json(changed=True, users={})

    options = ["--check"] if module.check_mode else []
    told, failures = {}, []
    for user in module.params["users"] or [user_now()]:
        status, out, err = module.run_command(command_line(user, path, options), cwd="/",
                                              data=json.dumps(module.params["profile"]))
        if out:
            told[user] = json.loads(out)
        lines = [f"{user}: {line.removeprefix('vantrelctl: ')}" for line in err.splitlines()]
        # 2 is a difference that the check has found.
        if status in (0, 2):
            for line in lines:
                module.warn(line)
        else:
            failures += lines or [f"{user}: {path} ended with status {status}"]

    changed = {user: answer["changed"] for user, answer in told.items() if answer["changed"]}
    result = {"changed": bool(changed), "users": told,
              "diff": [{"before_header": user, "after_header": user, "before": settings(changes, "before"),
                        "after": settings(changes, "after")} for user, changes in changed.items()]}
    if failures:
        module.fail_json(msg="\n".join(failures), **result)
    module.exit_json(**result)


if __name__ == "__main__":
    main()
