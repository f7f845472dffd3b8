"""What the library takes the GPU for, given what the device answers, and what it says of it."""

from dataclasses import dataclass

NOT_IDENTIFIED = 0xFFFFFFFF  # the chip id before the first answer
QUERY_FAILED = 0  # the chip id after a device that could not be opened or asked


@dataclass(frozen=True)
class Chip:
    """A GPU as the rules see it. What the fields of a chip without a row hold is False and 0."""

    chip_id: int
    family_id: int = 0  # 5, 6, 7; 0 = the chip id has no row
    model_code: int = 0
    # What goes by the model.
    yuv16_ext: bool = False  # formats 709-714
    p016: bool = False  # formats 105, 715-721
    family5_sample_excluded: bool = False  # the two models that do not sample some block formats
    # Bandwidth compression, by the chip.
    ubwc_never: bool = False  # the two chips without any
    ubwc_depth_excluded: bool = False
    ubwc_yuv_a: bool = False
    ubwc_yuv_b: bool = False
    ubwc_yuv16: bool = False


@dataclass(frozen=True)
class Message:
    """A diagnostic: the function that it names, and its text with the arguments printed."""

    function: str
    text: str


@dataclass(frozen=True)
class Machine:
    """A device, and which of the services' operations fails on it."""

    reported_chip_id: int
    failure: str = "none"  # or "library_open", "device_open", "getinfo"


@dataclass(frozen=True)
class Identity:
    """What comes of asking the device."""

    chip: Chip
    messages: tuple  # of each identification
    asks_again: bool  # whether every further call identifies anew


def identify(machine, chips):
    """The identity that a call meets on a machine; `chips` are the chips with rows, by id."""
    messages = []
    if machine.failure == "library_open":
        chip_id = NOT_IDENTIFIED
        messages.append(Message("ReadGpuID_from_khxl", "Failed to open HXL Library!!!!"))
    elif machine.failure in ("device_open", "getinfo"):
        chip_id = QUERY_FAILED
    elif machine.failure == "none":
        chip_id = machine.reported_chip_id
    else:
        raise ValueError(f"no operation is called {machine.failure}")
    chip = chips.get(chip_id)
    if chip is None:
        chip = Chip(chip_id)
        for step in ("korvel_get_family_id", "korvel_get_chip_id", "korvel_get_rev_id"):
            messages.append(Message(step, f"Unknown HXL chip ID {chip_id}"))
    return Identity(chip, tuple(messages), chip_id == NOT_IDENTIFIED)
