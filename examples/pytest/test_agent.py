"""How code of an agent, here `run_until_passed`, fares with an app that misbehaves."""

import pytest

SHOP = "Corner Shop"
NOTES = "Pocket Notes"


def run_until_passed(bench, project, test, attempts):
    """The code under test: runs a test again while it fails. Gives the statuses."""
    statuses = []
    while len(statuses) < attempts and "passed" not in statuses:
        statuses.append(bench.follow(bench.run(project, test))["status"])
    return statuses


@pytest.mark.scenario("flaky-suite.json")
def test_a_flaky_test_passes_at_last(bench):
    statuses = run_until_passed(bench, SHOP, "Browse the catalogue", attempts=5)
    assert statuses == ["failed", "failed", "passed"]


@pytest.mark.scenario("flaky-suite.json")
def test_a_defect_does_not_go_away(bench):
    statuses = run_until_passed(bench, SHOP, "Redeem a voucher", attempts=3)
    assert statuses == ["failed", "failed", "failed"]


@pytest.mark.scenario("crashing-app.json")
def test_a_crash_is_seen_and_the_run_settled_by_the_next_start(bench):
    request_id = bench.run(SHOP, "Browse the catalogue")
    assert bench.app.wait(20) == 70
    assert "Corvane.app is NOT running" in bench.look(request_id).text
    bench.start_app()
    assert bench.follow(request_id)["status"] == "error"


@pytest.mark.scenario("crashing-app.json")
@pytest.mark.parametrize(
    "test, step", [("Search and filter", 3), ("Add to cart and remove", 1)]
)
def test_an_app_that_falls_silent_is_told_from_one_that_works(bench, test, step):
    request_id = bench.run(SHOP, test)
    bench.wait_until(lambda: f'"currentStep":{step},' in bench.look(request_id).text)
    assert "run still in progress" in bench.look(request_id).text
    bench.let_time_pass(request_id, seconds=100)
    # Five heartbeats, none of which comes.
    assert bench.holds(lambda: "STALE" in bench.look(request_id).text, seconds=0.5)


@pytest.mark.scenario("slow-machine.json")
def test_a_request_waits_to_be_picked_up(bench):
    request_id = bench.run(NOTES, "Sync")
    assert bench.holds(
        lambda: bench.look(request_id).text.startswith("status: pending"), seconds=1
    )
    bench.wait_until(lambda: "status: running" in bench.look(request_id).text)


@pytest.mark.scenario("slow-machine.json")
def test_a_torn_result_is_an_error_until_it_is_whole(bench):
    request_id = bench.run(NOTES, "Write a note")
    bench.wait_until(lambda: bench.look(request_id).text.startswith("error:result_unreadable"))
    bench.wait_until(lambda: not bench.look(request_id).is_error)
    assert bench.follow(request_id)["status"] == "passed"
