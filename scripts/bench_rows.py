"""What Google Benchmark has measured, as a table of cases: who needs how much for each."""
import json
from dataclasses import dataclass, field

# Copying the result is the physical bound, not something that a user could pick instead.
BOUNDS = {"memcpy"}
# Who is off by more gives another answer, not the same one sooner.
MOST_ERROR = 1e-2


@dataclass
class Case:
    """Medians by who was measured: nanoseconds, or bytes where memory is counted."""

    inBytes: bool = False
    amounts: dict = field(default_factory=dict)
    errors: dict = field(default_factory=dict)
    sizes: dict = field(default_factory=dict)

    def peers(self):
        return {who: amount for who, amount in self.amounts.items()
                if not who.startswith("ZK") and who not in BOUNDS
                and self.errors.get(who, 0) <= MOST_ERROR}

    def ratio(self, who="ZK"):
        """To the fastest peer; nothing where there is none."""
        peers = self.peers()
        return self.amounts[who] / min(peers.values()) if peers and who in self.amounts else None

    def note(self, who):
        """What is told beside the amount."""
        error = f"error {self.errors[who]:.1e}" if who in self.errors else ""
        size = f"{self.sizes[who] / 1e6:.2f} MB" if who in self.sizes else ""
        return error or size

    def text(self, who):
        amount = self.amounts[who]
        if self.inBytes:
            return f"{amount:.1f} B"
        for unit, scale in (("ms", 1e6), ("us", 1e3)):
            if amount >= scale:
                return f"{amount / scale:.2f} {unit}"
        return f"{amount:.2f} ns"


def read(path):
    """The cases by name, what failed, and what the measurement tells of the machine."""
    with open(path, encoding="utf-8") as file:
        document = json.load(file)
    cases, failures = {}, []
    for row in document["benchmarks"]:
        if row.get("error_occurred"):
            failures.append(f"{row['run_name']}: {row['error_message']}")
        elif row.get("aggregate_name") == "median":
            # Rows whose work is done by several threads have the time that passes.
            name = row["run_name"].removesuffix("/iterations:1").removesuffix("/real_time")
            title, who = name.rsplit("/", 1)
            measure = "real_time" if row["run_name"].endswith("/real_time") else "cpu_time"
            case = cases.setdefault(title, Case())
            # Rows that count memory have no time.
            case.inBytes = "bytes" in row
            case.amounts[who] = row["bytes" if case.inBytes else measure]
            if "error" in row:
                case.errors[who] = row["error"]
            if "size" in row:
                case.sizes[who] = row["size"]
    return cases, failures, document["context"]
