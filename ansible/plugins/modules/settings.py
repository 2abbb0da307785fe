"""Documentation of the task. The action plugin of the same name does the work."""

DOCUMENTATION = """
module: settings
short_description: Points the management agent of a Mac at its server
description:
  - Runs the utility's C(configure-agent) on the Mac, which does what Apply does in the settings
    window. It stops the agent's jobs, replaces C(server.plist) and starts the jobs again, but only
    if something is not as requested.
  - Needs no Python on the Mac. Set C(gather_facts=false) in the play.
  - Needs root, so set C(become=true).
options:
  server:
    description: IPv4 or IPv6 address or host name of the management server.
    type: str
    required: true
  port:
    description: Port of the server. Default is the stored port, else 6000.
    type: int
  language:
    description: Language code of the agent's user interface. Default is the stored language.
    type: str
  reset:
    description: When applying, also deletes the agent's own settings files and has it regenerate them.
    type: bool
    default: false
  force:
    description: Applies even if everything is as requested.
    type: bool
    default: false
  executable:
    description: Path of C(configure-agent) on the Mac. Each edition has its own.
    type: str
    default: /Applications/Utilities/Zentavo Configuration Utility.app/Contents/MacOS/configure-agent
attributes:
  check_mode:
    support: full
    description: Runs the utility's own check, which changes nothing.
  diff_mode:
    support: full
    description: Shows the settings and jobs before and after.
author: the authors of Configuration Utility
"""

EXAMPLES = """
- name: Point the agent at the new server
  configuration_utility.agent.settings:
    server: mdm.example.com
    port: 6000
  become: true

- name: The same with another edition of the utility
  configuration_utility.agent.settings:
    server: mdm.example.com
    executable: /Applications/Utilities/Oskel Configuration Utility.app/Contents/MacOS/configure-agent
  become: true
"""

RETURN = """
before:
  description: Settings and jobs before.
  returned: if configure-agent ran
  type: dict
after:
  description: Settings and jobs afterwards.
  returned: if configure-agent ran
  type: dict
wanted:
  description: The requested settings.
  returned: if configure-agent ran
  type: dict
problems:
  description: What is not as requested, or what went wrong.
  returned: if configure-agent ran
  type: list
  elements: str
rc:
  description: Exit status of configure-agent.
  returned: always
  type: int
"""
