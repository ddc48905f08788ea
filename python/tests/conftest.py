"""The suite draws the same examples in every run; `./dev python --hypothesis-profile=default` looks for new ones."""

from hypothesis import settings

settings.register_profile("suite", derandomize=True, deadline=None)
settings.load_profile("suite")
