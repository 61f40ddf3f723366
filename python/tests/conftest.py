"""The same random examples in every run, limited to a few seconds; PAVO_ZORV_ROUNDS=<n> tries n times as many."""

import os

import hypothesis

hypothesis.settings.register_profile(
    "project",
    derandomize=True,
    database=None,
    deadline=None,
    max_examples=10 * int(os.environ.get("PAVO_ZORV_ROUNDS", "1")),
    suppress_health_check=list(hypothesis.HealthCheck),
)
hypothesis.settings.load_profile("project")
