"""Which formats a GPU renders to, samples from and keeps in bandwidth compression (UBWC).

Each rule is a function of a chip, a format id and the other arguments, all of them plain integers
of 32 bits, given signed or unsigned. Its answer is 1 or 0 and the message that goes with it; what
identification says on the first call comes before that and is none of it (identification.py).
"""

from dataclasses import dataclass

from id_list import id_list
from identification import Message

FAMILIES = (5, 6, 7)


@dataclass(frozen=True)
class Answer:
    """What a predicate returns, and the message that it sends, if any."""

    supported: int
    message: Message | None = None


NO = Answer(0)
YES = Answer(1)

# Formats of depth and stencil that can be targets: only as such.
DEPTH_STENCIL_TARGETS = id_list("20, 40, 45, 55, 548, 551-553")
# And those that can be read as depth or stencil.
DEPTH_STENCIL_VIEWS = id_list("20, 40, 45-47, 55, 548-549, 551-553")
# Three bytes a pixel: for colour alone.
THREE_BYTE_COLOUR = id_list("508")

RENDERED_BY_ALL_FAMILIES = id_list(
    "2-4, 10-14, 16-18, 24-32, 34-38, 41-43, 49-52, 54, 56-59, 61-65, 85-88, 90-93, 101-104, 106,"
    "107, 115, 502, 503, 506, 507, 509, 511, 512, 514, 515, 517-520, 522, 524, 525, 527, 528, 530,"
    "532, 535, 537-547, 610-622, 625, 647, 648, 650, 652, 653, 660, 678"
)
RENDERED_BY_FAMILY = {
    5: id_list("663, 664, 668, 669"),
    6: id_list("67, 116, 117, 118, 646"),
    7: id_list("67, 116, 117, 118, 646, 683, 684"),
}
# On family 7 alone, by the model.
RENDERED_WITH_YUV16_EXT = id_list("709, 712")
RENDERED_WITH_P016 = id_list("105, 717")

SAMPLED_BY_ALL_FAMILIES = id_list(
    "2-4, 10-14, 16-18, 21, 22, 24-26, 28-32, 34-38, 41-43, 49-52, 54, 56-59, 61-65, 67-88, 91,"
    "93-100, 103, 104, 107, 115, 133, 137, 141, 145, 149, 153, 157, 161, 165, 169, 173, 177, 181,"
    "185, 502, 503, 506, 507, 509, 511, 512, 514, 515, 517-520, 522, 524, 525, 527, 528, 530, 532,"
    "535, 537-547, 568-622, 625-648, 650, 652-664, 678, 681, 682"
)
SAMPLED_BY_FAMILY = {
    5: id_list("676, 677"),
    6: id_list("116, 117, 118, 668, 669, 679, 680"),
    7: id_list("116, 117, 118, 668, 669, 679, 680, 683, 684"),
}
# Beside DEPTH_STENCIL_VIEWS, what a family reads as depth or stencil alone.
FURTHER_VIEWS_BY_FAMILY = {5: id_list("668, 669"), 6: frozenset(), 7: frozenset()}
# On family 7 alone, by the model.
SAMPLED_WITH_YUV16_EXT = id_list("709-714")
SAMPLED_WITH_P016 = id_list("105, 715-721")
# What the two models of family 5 do not sample.
NOT_SAMPLED_BY_EXCLUDED_MODELS = id_list("80, 81, 83, 84, 95, 96, 626-635")

COMPRESSED_ALWAYS = id_list("10, 24, 28, 29, 87, 88, 103, 107, 506, 507, 520, 614, 619, 620")
COMPRESSED_UNLESS_DEPTH_EXCLUDED = id_list("40, 45, 55, 548, 610")
COMPRESSED_WITH_YUV_A_OR_B = id_list("104, 654-664")
COMPRESSED_WITH_YUV_B = id_list("683, 684")
COMPRESSED_WITH_YUV16 = id_list("709-711")

# Every id that some list names lies below; from here on all ids are answered alike.
FIRST_UNNAMED_ID = 1 + max(
    max(ids)
    for ids in (
        DEPTH_STENCIL_TARGETS,
        DEPTH_STENCIL_VIEWS,
        THREE_BYTE_COLOUR,
        RENDERED_BY_ALL_FAMILIES,
        *RENDERED_BY_FAMILY.values(),
        RENDERED_WITH_YUV16_EXT,
        RENDERED_WITH_P016,
        SAMPLED_BY_ALL_FAMILIES,
        *SAMPLED_BY_FAMILY.values(),
        FURTHER_VIEWS_BY_FAMILY[5],
        SAMPLED_WITH_YUV16_EXT,
        SAMPLED_WITH_P016,
        NOT_SAMPLED_BY_EXCLUDED_MODELS,
        COMPRESSED_ALWAYS,
        COMPRESSED_UNLESS_DEPTH_EXCLUDED,
        COMPRESSED_WITH_YUV_A_OR_B,
        COMPRESSED_WITH_YUV_B,
        COMPRESSED_WITH_YUV16,
    )
)


def renderable(chip, format_id, depth_stencil_use):
    """isFormatRenderableByGpu: the use is that of a depth/stencil target when it is not 0."""
    format_id, depth_stencil_use = _word(format_id), _word(depth_stencil_use)
    if chip.family_id not in FAMILIES:
        return _unknown_family("isFormatRenderableByGpu", chip)
    if format_id in RENDERED_BY_ALL_FAMILIES or format_id in RENDERED_BY_FAMILY[chip.family_id]:
        return YES
    if format_id in DEPTH_STENCIL_TARGETS:
        return _answer(depth_stencil_use != 0)
    if format_id in THREE_BYTE_COLOUR:
        return _answer(depth_stencil_use == 0)
    if chip.family_id == 7 and format_id in RENDERED_WITH_YUV16_EXT:
        return _answer(chip.yuv16_ext)
    if chip.family_id == 7 and format_id in RENDERED_WITH_P016:
        return _answer(chip.p016)
    return NO


def sampleable(chip, format_id, sample_count, depth_stencil_view):
    """isFormatSampleableByGpu: the count is unsigned, 0 and 1 being one sample; the format is read
    as depth/stencil when the view is not 0."""
    format_id, sample_count = _word(format_id), _word(sample_count)
    depth_stencil_view = _word(depth_stencil_view)
    if chip.family_id not in FAMILIES:
        return _unknown_family("isFormatSampleableByGpu", chip)
    supported = _sampled_by_family(chip, format_id, sample_count, depth_stencil_view)
    if chip.family_id == 5 and chip.family5_sample_excluded:
        supported = supported and format_id not in NOT_SAMPLED_BY_EXCLUDED_MODELS
    return _answer(supported)


def ubwc_supported(chip, format_id):
    """isUBWCSupportedByGpu: never with a message, on an unknown family either."""
    format_id = _word(format_id)
    if chip.family_id not in FAMILIES or chip.ubwc_never:
        return NO
    if format_id in COMPRESSED_ALWAYS:
        return YES
    if format_id in COMPRESSED_UNLESS_DEPTH_EXCLUDED:
        return _answer(not chip.ubwc_depth_excluded)
    if format_id in COMPRESSED_WITH_YUV_A_OR_B:
        return _answer(chip.ubwc_yuv_a or chip.ubwc_yuv_b)
    if format_id in COMPRESSED_WITH_YUV_B:
        return _answer(chip.ubwc_yuv_b)
    if format_id in COMPRESSED_WITH_YUV16:
        return _answer(chip.ubwc_yuv16)
    return NO


def _sampled_by_family(chip, format_id, sample_count, depth_stencil_view):
    if format_id in SAMPLED_BY_ALL_FAMILIES or format_id in SAMPLED_BY_FAMILY[chip.family_id]:
        return True
    if format_id in DEPTH_STENCIL_VIEWS or format_id in FURTHER_VIEWS_BY_FAMILY[chip.family_id]:
        return depth_stencil_view != 0
    if format_id in THREE_BYTE_COLOUR:
        return sample_count < 2 and depth_stencil_view == 0
    if chip.family_id == 7 and format_id in SAMPLED_WITH_YUV16_EXT:
        return chip.yuv16_ext
    if chip.family_id == 7 and format_id in SAMPLED_WITH_P016:
        return chip.p016
    return False


def _unknown_family(function, chip):
    return Answer(0, Message(function, f"Unknown Family ID {chip.family_id}"))


def _answer(supported):
    return YES if supported else NO


def _word(value):
    """The 32 bits of an argument, signed or not."""
    if not -(2**31) <= value < 2**32:
        raise ValueError(f"{value} is no 32-bit argument")
    return value & 0xFFFFFFFF
